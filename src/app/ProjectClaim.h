#pragma once

#include <QString>
#include <memory>

class ProjectLock;
class RecordingLock;

/// Keeps a project and its recording to one station, for as long as the claim and its copies exist.
class ProjectClaim
{
public:
    /// What the station has claimed already, @p present, is no obstacle. False while somebody else has either of the
    /// two; nothing is claimed then.
    bool acquire(const QString &projectFile, const QString &recording, const ProjectClaim &present);
    /// Who has it, in words for the operator, after acquire() has failed.
    QString refusal() const { return m_refusal; }

private:
    std::shared_ptr<ProjectLock> m_project;
    std::shared_ptr<RecordingLock> m_recording;
    QString m_refusal;
};
