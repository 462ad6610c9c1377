#include "ServedReadings.h"

#include "RecordingReader.h"
#include "loggersim/SimLogger.h"

#include <QDateTime>
#include <QLocale>
#include <QMap>
#include <QSet>

namespace {

const QString noValueText = QStringLiteral("NULL");

QString exactText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString text(const QVariant &recorded)
{
    return recorded.isNull() ? noValueText : exactText(recorded.toDouble());
}

QString expectedText(const QByteArray &sent)
{
    return sent == "----" ? noValueText : exactText(QByteArray::number(sent.toDouble(), 'g', 6).toDouble());
}

QString expectedTexts(const QByteArray &values)
{
    const QByteArrayList fields = values.split(',');
    return expectedText(fields.at(0)) + QLatin1Char(' ') + expectedText(fields.at(1));
}

/// The index behind the last row of the same second as row @p first.
int endOfSecond(const QList<RecordedRow> &rows, int first)
{
    int end = first;
    while (end < rows.size() && rows.at(end).time == rows.at(first).time)
        ++end;
    return end;
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

} // namespace

ServedReadings::ServedReadings(const QString &serial) : m_serial(serial) {}

ServedReadings::ServedReadings(loggersim::SimLogger *logger) : ServedReadings(logger->key())
{
    QObject::connect(logger, &loggersim::SimLogger::readingServed, logger,
                     [this](const QByteArray &values) { append(values); });
}

void ServedReadings::append(const QByteArray &values)
{
    m_readings.append(expectedTexts(values));
    m_times.append(QDateTime::currentSecsSinceEpoch());
}

QString ServedReadings::textOf(const RecordedRow &row)
{
    return text(row.channel1) + QLatin1Char(' ') + text(row.channel2);
}

QString ServedReadings::differences(const QList<RecordedRow> &rows, bool lastMayMiss) const
{
    const QList<RecordedRow> recorded = readingsOf(m_serial, rows);
    // The recording does not keep the order of rows of one second.
    for (int first = 0; first < recorded.size(); first = endOfSecond(recorded, first)) {
        QStringList found;
        for (int i = first; i < endOfSecond(recorded, first); ++i)
            found += textOf(recorded.at(i));
        const QStringList expected = m_readings.mid(first, int(found.size()));
        if (sorted(found) != sorted(expected)) {
            return QStringLiteral("%1: from reading %2 on [%3] was served and [%4] recorded")
                .arg(m_serial)
                .arg(first)
                .arg(expected.join(QStringLiteral("; ")), found.join(QStringLiteral("; ")));
        }
    }
    const int missing = count() - int(recorded.size());
    return missing <= (lastMayMiss ? 1 : 0)
               ? QString()
               : QStringLiteral("%1: the last %2 of %3 readings are missing").arg(m_serial).arg(missing).arg(count());
}

int ServedReadings::noteShown(const QStringList &stationLines)
{
    const QString start = QStringLiteral("- ConfiguredDevice::takeReadings() : %1 : ").arg(m_serial);
    const int before = int(m_shown.size());
    for (const QString &line : stationLines) {
        if (line.startsWith(start))
            m_shown += expectedTexts(line.mid(start.size()).toLatin1());
    }
    return int(m_shown.size()) - before;
}

QString ServedReadings::miscounts(const QList<RecordedRow> &rows) const
{
    QMap<QString, int> served;
    for (const QString &reading : m_readings)
        ++served[reading];
    QMap<QString, int> shown;
    for (const QString &reading : m_shown)
        ++shown[reading];
    QMap<QString, int> recorded;
    const QList<RecordedRow> own = readingsOf(m_serial, rows);
    for (const RecordedRow &row : own)
        ++recorded[textOf(row)];
    const QStringList texts = QSet<QString>(m_readings.cbegin(), m_readings.cend())
                                  .unite(QSet<QString>(recorded.keyBegin(), recorded.keyEnd()))
                                  .unite(QSet<QString>(m_shown.cbegin(), m_shown.cend()))
                                  .values();
    QStringList found;
    for (const QString &reading : texts) {
        if (recorded.value(reading) < shown.value(reading) || recorded.value(reading) > served.value(reading)) {
            found += QStringLiteral("%1 [%2]: %3 served, %4 shown, %5 recorded")
                         .arg(m_serial, reading)
                         .arg(served.value(reading))
                         .arg(shown.value(reading))
                         .arg(recorded.value(reading));
        }
    }
    return found.join(QStringLiteral("; "));
}

QStringList ServedReadings::missingSince(int first, const QList<RecordedRow> &rows) const
{
    QStringList missing = m_readings.mid(first, count() - first - 1);
    const QList<RecordedRow> recorded = readingsOf(m_serial, rows);
    for (const RecordedRow &row : recorded)
        missing.removeAll(textOf(row));
    return missing;
}
