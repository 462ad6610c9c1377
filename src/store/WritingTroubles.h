#pragma once

#include <QObject>
#include <QSqlError>
#include <QString>

#include <set>

/// Whether the error says that another program has the file locked.
bool isLockError(const QSqlError &error);

/// What keeps readings from reaching their files, in words for the operator: each kind is told once until it is over.
class WritingTroubles : public QObject
{
    Q_OBJECT

public:
    enum class Kind { InUse, Gone, DiskNearlyFull, Waiting, Lost, Unsaved, Dropped };

    /// Last step of every failing attempt: a receiver may call back.
    void tell(Kind kind, const QString &reason);
    /// For rows that wait because of @p error.
    void tellWaiting(const QSqlError &error);
    /// Rows were written: only what is wrong with the spool is left.
    void writingWorks();
    void spoolFails(const QString &reason);
    void spoolWorks();

signals:
    void began(const QString &reason);
    /// All is well again.
    void ended();

private:
    std::set<Kind> m_told;
    QString m_ofSpool; ///< empty while it works
};
