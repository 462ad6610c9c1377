#include "project/ProjectLock.h"

ProjectLock::ProjectLock(const QString &projectFile) : m_lock(projectFile) {}

bool ProjectLock::acquire()
{
    return m_lock.acquire();
}

bool ProjectLock::isOn(const QString &projectFile) const
{
    return m_lock.isOn(projectFile);
}

QString ProjectLock::refusal() const
{
    const QString host = m_lock.otherHost();
    if (host.isEmpty())
        return QStringLiteral("The project is open in another Sorvanto Lite.\nPlease retry.");
    return QStringLiteral("The project is open in Sorvanto Lite on the computer \"%1\".\nPlease retry.").arg(host);
}
