#include "store/WritingTroubles.h"

bool isLockError(const QSqlError &error)
{
    const QString code = error.nativeErrorCode();
    return code == QLatin1String("5") || code == QLatin1String("6"); // SQLITE_BUSY, SQLITE_LOCKED
}

void WritingTroubles::tell(Kind kind, const QString &reason)
{
    if (m_told.insert(kind).second)
        emit began(reason);
}

void WritingTroubles::tellWaiting(const QSqlError &error)
{
    if (isLockError(error)) {
        tell(Kind::InUse, QStringLiteral("The recording is in use by another program. "
                                         "Readings wait in memory until it is free."));
    } else {
        tell(Kind::Waiting, QStringLiteral("Readings could not be written and wait in memory: %1").arg(error.text()));
    }
}

void WritingTroubles::writingWorks()
{
    if (m_told.empty() || (m_told.size() == 1 && m_told.count(Kind::Unsaved) == 1))
        return;
    m_told.clear();
    if (m_ofSpool.isEmpty())
        emit ended();
    else
        tell(Kind::Unsaved, m_ofSpool);
}

void WritingTroubles::spoolFails(const QString &reason)
{
    m_ofSpool =
        QStringLiteral("Readings cannot be saved at once and wait in memory until they are recorded: %1").arg(reason);
    tell(Kind::Unsaved, m_ofSpool);
}

void WritingTroubles::spoolWorks()
{
    m_ofSpool.clear();
    m_told.erase(Kind::Unsaved);
    if (m_told.empty())
        emit ended();
}
