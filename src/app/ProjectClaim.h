#pragma once

#include <QString>
#include <memory>

class ProjectLock;
class RecordingLock;

/// Keeps a project and its recording to one station, for as long as the claim and its copies exist.
class ProjectClaim
{
public:
    // Both are false while somebody else has the file. What the station has claimed already, @p present, is no
    // obstacle.
    bool acquireProject(const QString &projectFile, const ProjectClaim &present);
    bool acquireRecording(const QString &recording, const ProjectClaim &present);
    /// Who has it, in words for the operator, after one of them has failed.
    QString refusal() const { return m_refusal; }

private:
    std::shared_ptr<ProjectLock> m_project;
    std::shared_ptr<RecordingLock> m_recording;
    QString m_refusal;
};
