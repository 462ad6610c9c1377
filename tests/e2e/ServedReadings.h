#pragma once

#include "support/RecordedRows.h"

#include <QList>
#include <QStringList>

namespace loggersim {
class SimLogger;
}

/// Every reading that a logger has served, as it must stand in the recording: six significant digits, NULL for "----".
class ServedReadings
{
public:
    /// Of the logger with that key; none yet.
    explicit ServedReadings(const QString &serial);
    /// Listens to @p logger, which must not outlive this.
    explicit ServedReadings(loggersim::SimLogger *logger);
    ServedReadings(const ServedReadings &) = delete;
    ServedReadings &operator=(const ServedReadings &) = delete;

    /// Both values as the logger has sent them: "21.50,45.10".
    void append(const QByteArray &values);
    QString serial() const { return m_serial; }
    int count() const { return int(m_readings.size()); }
    /// Number @p index as textOf() has its row.
    const QString &at(int index) const { return m_readings.at(index); }
    /// When it was served, in Unix seconds.
    qint64 timeOf(int index) const { return m_times.at(index); }
    /// The values of a row, so that equal texts are equal values.
    static QString textOf(const RecordedRow &row);

    /// What is wrong with a recording's rows, by time, in which each of these readings must be exactly once and in
    /// order: an empty text when nothing is. The last reading may be missing if @p lastMayMiss, because it was on its
    /// way when the recording stopped.
    QString differences(const QList<RecordedRow> &rows, bool lastMayMiss = true) const;
    /// Notes which readings the station has shown, by what it has said of them. Returns how many.
    int noteShown(const QStringList &stationLines);
    /// All of them, as at() has them.
    const QStringList &shown() const { return m_shown; }
    /// What is wrong with a recording's rows in which each reading that was shown must be, and each that was served may
    /// be once: an empty text when nothing is.
    QString miscounts(const QList<RecordedRow> &rows) const;
    /// The readings from number @p first on that are not in the recording. The last one may be missing.
    QStringList missingSince(int first, const QList<RecordedRow> &rows) const;

private:
    QString m_serial;
    QStringList m_readings;
    QList<qint64> m_times;
    QStringList m_shown;
};
