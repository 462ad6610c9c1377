#include "project/StationLock.h"

#include "store/FileIdentity.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>
#include <filesystem>
#include <system_error>

namespace {

/// The one path of a file, or of one that is still to be made in a folder that exists.
QString canonicalPath(const QString &path)
{
    const QFileInfo file(path);
    QString canonical = file.canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? file.absoluteFilePath() : folder + QLatin1Char('/') + file.fileName();
}

/// For a file whose own folder takes no lock.
QString pathOfTheUser(const QByteArray &file)
{
    const QByteArray digest = QCryptographicHash::hash(file, QCryptographicHash::Sha1);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QStringLiteral("/sorvanto-") +
           QString::fromLatin1(digest.toHex()) + QStringLiteral(".lock");
}

/// The other computer that a lock file names; empty for this one, and for a file that a crash has left without a word.
QString hostOf(const QLockFile &file)
{
    qint64 process = 0;
    QString host;
    QString program;
    const bool isKnown = file.getLockInfo(&process, &host, &program) && host != QSysInfo::machineHostName();
    return isKnown ? host : QString();
}

#ifdef Q_OS_UNIX
bool hasHardLinks(const QString &file)
{
    std::error_code missing;
    const auto names = std::filesystem::hard_link_count(QFile::encodeName(file).toStdString(), missing);
    return !missing && names > 1;
}
#endif

} // namespace

StationLock::StationLock(const QString &file) : m_file(canonicalPath(file)) {}

bool StationLock::acquire()
{
    Outcome outcome = lockAt(m_file + QStringLiteral(".lock"));
    if (outcome == Outcome::Impossible)
        outcome = lockAt(pathOfTheUser(m_file.toUtf8()));
    return outcome != Outcome::HeldElsewhere;
}

bool StationLock::acquireWithHardLinks()
{
    if (!acquire())
        return false;
#ifdef Q_OS_UNIX
    if (hasHardLinks(m_file) && lockAt(pathOfTheUser(fileIdentity(m_file))) == Outcome::HeldElsewhere) {
        m_locks.clear();
        return false;
    }
#endif
    return true;
}

StationLock::Outcome StationLock::lockAt(const QString &path)
{
    auto lock = std::make_unique<QLockFile>(path);
    // A station may run for months; only its end makes its lock a stale one.
    lock->setStaleLockTime(0);
    if (!lock->tryLock()) {
        if (lock->error() != QLockFile::LockFailedError)
            return Outcome::Impossible;
        // After a crash the holder's process number may be in use again, by this very process even. The system knows
        // better, and does not let go of a file that a living station of this computer holds.
        m_otherHost = hostOf(*lock);
        if (!m_otherHost.isEmpty() || !lock->removeStaleLockFile() || !lock->tryLock())
            return Outcome::HeldElsewhere;
    }
    m_locks.push_back(std::move(lock));
    return Outcome::Locked;
}

bool StationLock::isOn(const QString &file) const
{
    return m_file == canonicalPath(file);
}

QString StationLock::otherHost() const
{
    return m_otherHost;
}
