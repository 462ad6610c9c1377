#pragma once

#include <QObject>
#include <QString>
#include <optional>

class InsertSerialData;
class QSqlDatabase;
class QTimer;

/// From when to when an open recording goes. One with an index on its times is asked. In one that an earlier version
/// has made without it the question would read the whole file: there the oldest and the newest rows are looked at, and
/// then, while the program does other things, all rows, a few at a time, as the clock may have been set in between.
class RecordedRange : public QObject
{
    Q_OBJECT

public:
    /// So many rows are read in one turn of the event loop, which takes no longer than writing a batch.
    static constexpr int rowsPerStep = 1000;

    /// The store must outlive this object.
    RecordedRange(const InsertSerialData &store, const QString &databaseFile, QObject *parent = nullptr);
    ~RecordedRange() override;

    /// Unix seconds of the earliest and the latest row as far as is known; 0 for an empty recording.
    quint32 start();
    quint32 end();
    /// Whether rows are still to be looked at.
    bool isSearching() const;

signals:
    /// All rows have been looked at.
    void known();

private:
    QSqlDatabase connection() const;
    bool open(const QString &databaseFile);
    bool hasTimeIndex() const;
    std::optional<qint64> lookAt(const QString &rows);
    void lookAtNewest();
    void step();

    const InsertSerialData &m_store;
    const QString m_connectionName;
    QTimer *const m_steps;
    bool m_isIndexed = true;
    bool m_hasRows = false;
    qint64 m_searchedUpTo = 0; ///< all rows up to this id have been looked at
    quint32 m_start = 0;
    quint32 m_end = 0;
};
