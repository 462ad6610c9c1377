#include "app/ProjectClaim.h"

#include "project/ProjectLock.h"
#include "project/RecordingLock.h"

namespace {

/// The lock on @p path, taken or shared; null, with the reason, when it is refused.
template <typename Lock>
std::shared_ptr<Lock> lockOn(const QString &path, const std::shared_ptr<Lock> &present, QString &refusal)
{
    if (present && present->isOn(path))
        return present;
    auto lock = std::make_shared<Lock>(path);
    if (lock->acquire())
        return lock;
    refusal = lock->refusal();
    return nullptr;
}

} // namespace

bool ProjectClaim::acquireProject(const QString &projectFile, const ProjectClaim &present)
{
    m_project = lockOn(projectFile, present.m_project, m_refusal);
    return m_project != nullptr;
}

bool ProjectClaim::acquireRecording(const QString &recording, const ProjectClaim &present)
{
    m_recording = lockOn(recording, present.m_recording, m_refusal);
    return m_recording != nullptr;
}
