#pragma once

#include <QSqlDatabase>
#include <QString>

/// A reader's lock on an SQLite file, which keeps writers out of it; also on a torn one. Waits up to five seconds while
/// another program is writing. One at a time.
class ReadLock
{
public:
    explicit ReadLock(const QString &path);
    ~ReadLock();
    ReadLock(const ReadLock &) = delete;
    ReadLock &operator=(const ReadLock &) = delete;

    bool isHeld() const { return m_isHeld; }
    /// What SQLite says about the file when the lock is not held.
    QString error() const { return m_error; }
    QSqlDatabase connection() const;

private:
    bool m_isHeld = false;
    QString m_error;
};
