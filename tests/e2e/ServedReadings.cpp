#include "ServedReadings.h"

#include "RecordingReader.h"
#include "loggersim/SimLogger.h"

#include <QDateTime>
#include <QLocale>
#include <QMap>

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
    const QByteArrayList fields = values.split(',');
    m_readings.append(expectedText(fields.at(0)) + QLatin1Char(' ') + expectedText(fields.at(1)));
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

QString ServedReadings::miscounts(const QList<RecordedRow> &rows, const QSet<int> &mayMiss) const
{
    QMap<QString, int> missing;
    QMap<QString, int> optional;
    for (int i = 0; i < count(); ++i) {
        ++missing[m_readings.at(i)];
        optional[m_readings.at(i)] += mayMiss.contains(i) ? 1 : 0;
    }
    const QList<RecordedRow> recorded = readingsOf(m_serial, rows);
    for (const RecordedRow &row : recorded)
        --missing[textOf(row)];
    QStringList found;
    for (auto reading = missing.cbegin(); reading != missing.cend(); ++reading) {
        if (reading.value() < 0 || reading.value() > optional.value(reading.key()))
            found += QStringLiteral("%1 [%2] missing: %3").arg(m_serial, reading.key()).arg(reading.value());
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
