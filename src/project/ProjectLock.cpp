#include "project/ProjectLock.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>

namespace {

QString canonicalPath(const QString &projectFile)
{
    const QFileInfo file(projectFile);
    const QString canonical = file.canonicalFilePath();
    return canonical.isEmpty() ? file.absoluteFilePath() : canonical;
}

/// For a project whose own folder takes no file.
QString pathOfTheUser(const QString &project)
{
    const QByteArray digest = QCryptographicHash::hash(project.toUtf8(), QCryptographicHash::Sha1);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QStringLiteral("/sorvanto-") +
           QString::fromLatin1(digest.toHex()) + QStringLiteral(".lock");
}

/// The other computer that a lock file names; empty for this one, and for a file that a crash has left without a word.
QString otherHost(const QLockFile &file)
{
    qint64 process = 0;
    QString host;
    QString program;
    const bool isKnown = file.getLockInfo(&process, &host, &program) && host != QSysInfo::machineHostName();
    return isKnown ? host : QString();
}

} // namespace

ProjectLock::ProjectLock(const QString &projectFile) : m_project(canonicalPath(projectFile)) {}

bool ProjectLock::acquire()
{
    Outcome outcome = lockAt(m_project + QStringLiteral(".lock"));
    if (outcome == Outcome::Impossible)
        outcome = lockAt(pathOfTheUser(m_project));
    return outcome != Outcome::HeldElsewhere;
}

ProjectLock::Outcome ProjectLock::lockAt(const QString &path)
{
    m_file = std::make_unique<QLockFile>(path);
    // A station may run for months; only its end makes its lock a stale one.
    m_file->setStaleLockTime(0);
    if (m_file->tryLock())
        return Outcome::Locked;
    if (m_file->error() != QLockFile::LockFailedError)
        return Outcome::Impossible;
    // After a crash the holder's process number may be in use again, by this very process even. The system knows
    // better, and does not let go of a file that a living station of this computer holds.
    if (otherHost(*m_file).isEmpty() && m_file->removeStaleLockFile() && m_file->tryLock())
        return Outcome::Locked;
    return Outcome::HeldElsewhere;
}

bool ProjectLock::isOn(const QString &projectFile) const
{
    return m_project == canonicalPath(projectFile);
}

QString ProjectLock::refusal() const
{
    const QString host = otherHost(*m_file);
    if (host.isEmpty())
        return QStringLiteral("The project is open in another Sorvanto Lite.\nPlease retry.");
    return QStringLiteral("The project is open in Sorvanto Lite on the computer \"%1\".\nPlease retry.").arg(host);
}
