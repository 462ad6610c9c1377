#pragma once

#include <QLockFile>
#include <QString>
#include <memory>
#include <vector>

/// Keeps a file to one station, whatever path leads to it; the file need not exist yet. What a station that died has
/// left behind is no lock.
class StationLock
{
public:
    explicit StationLock(const QString &file);

    /// False while another station has the file, on this computer or, in a shared folder, on another one. The lock then
    /// held lasts as long as this object. A file in a folder that cannot be written to is locked against other stations
    /// of the same user; where not even that is possible, this is true without a lock.
    bool acquire();
    /// Locks a file that has several hard links also against stations of the same user that came by another of them.
    /// Only for a file that is never replaced.
    bool acquireWithHardLinks();
    bool isOn(const QString &file) const;
    /// The other computer whose station has the file, after the lock was refused; empty for this computer.
    QString otherHost() const;

private:
    enum class Outcome { Locked, HeldElsewhere, Impossible };

    Outcome lockAt(const QString &path);

    const QString m_file; ///< where it really is
    std::vector<std::unique_ptr<QLockFile>> m_locks;
    QString m_otherHost;
};
