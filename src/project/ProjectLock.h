#pragma once

#include <QLockFile>
#include <QString>
#include <memory>

/// Keeps a project to one station. What a station that died has left behind is no lock.
class ProjectLock
{
public:
    explicit ProjectLock(const QString &projectFile);

    /// False while another station has the project, on this computer or, in a shared folder, on another one. The lock
    /// then held lasts as long as this object. A project in a folder that cannot be written to is locked against other
    /// stations of the same user; where not even that is possible, this is true without a lock.
    bool acquire();
    /// Whether this is the lock of that project, whatever path leads there.
    bool isOn(const QString &projectFile) const;
    /// Who has the project, in words for the operator, after acquire() has failed.
    QString refusal() const;

private:
    enum class Outcome { Locked, HeldElsewhere, Impossible };

    Outcome lockAt(const QString &path);

    const QString m_project; ///< where the file really is
    std::unique_ptr<QLockFile> m_file;
};
