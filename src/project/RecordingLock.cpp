#include "project/RecordingLock.h"

#include <QFileInfo>

RecordingLock::RecordingLock(const QString &databaseFile) : m_databaseFile(databaseFile), m_lock(databaseFile) {}

bool RecordingLock::acquire()
{
    return QFileInfo(m_databaseFile).isDir() || m_lock.acquireWithHardLinks();
}

bool RecordingLock::isOn(const QString &databaseFile) const
{
    return m_lock.isOn(databaseFile);
}

QString RecordingLock::refusal() const
{
    const QString recording = QFileInfo(m_databaseFile).fileName();
    const QString host = m_lock.otherHost();
    if (host.isEmpty())
        return QStringLiteral("Another open project records into \"%1\".\nPlease retry.").arg(recording);
    return QStringLiteral("A project that is open on the computer \"%1\" records into \"%2\".\nPlease retry.")
        .arg(host, recording);
}
