#include "LoggerProcess.h"

#include "LoggerNetwork.h"
#include "ServedReadings.h"

#include <QFile>
#include <QLocalSocket>
#include <QTest>

#include <algorithm>
#include <iterator>

namespace {

constexpr int startTimeoutMs = 60000;

// So that the loggers' keys look like those of real ones.
constexpr int seed = 0x4B1C;

} // namespace

LoggerProcess::~LoggerProcess()
{
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        m_process.kill();
}

QString LoggerProcess::key(int number)
{
    return QStringLiteral("02%1%2").arg(seed, 4, 16).arg(number, 6, 16, QLatin1Char('0')).toUpper();
}

bool LoggerProcess::start(int loggers)
{
    const InLoggerNetwork scope;
    m_process.start(QStringLiteral("setpriv"),
                    {"--pdeathsig", "TERM", LOGGERSIM, "--network", QString::number(loggers), "--addresses", address(1),
                     "--port", "23", "--discovery", "any", "--seed", QString::number(seed), "--control",
                     m_folder + "/control", "--served", m_folder + "/served"});
    return QTest::qWaitFor([this] { return (m_output += m_process.readAllStandardOutput()).endsWith("ready\n"); },
                           startTimeoutMs);
}

QByteArray LoggerProcess::control(const QByteArray &line)
{
    QLocalSocket socket;
    QByteArray answer;
    QObject::connect(&socket, &QLocalSocket::readyRead, &socket, [&] { answer += socket.readAll(); });
    socket.connectToServer(m_folder + "/control");
    socket.write(line + '\n');
    const bool isList = line.startsWith("commands") || line.startsWith("counts");
    const QByteArray last = isList ? "end\n" : "\n";
    if (!QTest::qWaitFor([&] { return answer.endsWith(last); }, startTimeoutMs))
        return "no answer: " + answer;
    answer.chop(last.size());
    return answer.trimmed();
}

QStringList LoggerProcess::readingsOf(const QString &key) const
{
    QFile file(m_folder + "/served");
    QStringList readings;
    if (!file.open(QIODevice::ReadOnly))
        return readings;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key.toLatin1() + '\t'))
            readings += QString::fromLatin1(line.split('\t').at(1));
    }
    return readings;
}

LoggerProcess::Counts LoggerProcess::served() const
{
    Counts counts;
    QFile file(m_folder + "/served");
    if (!file.open(QIODevice::ReadOnly))
        return counts;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.contains('\t'))
            ++counts[QString::fromLatin1(line.left(line.indexOf('\t')))];
    }
    return counts;
}

QByteArray LoggerProcess::differences(const QList<RecordedRow> &rows, const Counts &start, const Counts &end) const
{
    QStringList found;
    for (auto it = end.cbegin(); it != end.cend(); ++it) {
        const QString difference = differences(it.key(), rows, start.value(it.key()), it.value());
        if (!difference.isEmpty())
            found += difference;
    }
    return found.join(QLatin1Char('\n')).toLocal8Bit();
}

/// The reading before the start may have been on its way then, and the one after it served before the station knew.
QString LoggerProcess::differences(const QString &key, const QList<RecordedRow> &rows, int start, int end) const
{
    const QStringList readings = readingsOf(key);
    QString difference;
    for (const int first : {start, start - 1, start + 1}) {
        if (first < 0)
            continue;
        ServedReadings served(key);
        for (const QString &reading : readings.mid(first, end - first))
            served.append(reading.toLatin1());
        const QString found = served.differences(rows);
        if (found.isEmpty())
            return found;
        if (difference.isEmpty())
            difference = found;
    }
    return difference;
}

QList<RecordedRow> recordingOf(const QList<RecordedRow> &rows, int index)
{
    QMap<QString, int> ended;
    QList<RecordedRow> recording;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(recording), [&](const RecordedRow &row) {
        int &number = ended[row.serial];
        return row.isGap() ? number++ == index : number == index;
    });
    std::stable_sort(recording.begin(), recording.end(),
                     [](const RecordedRow &a, const RecordedRow &b) { return a.time < b.time; });
    return recording;
}
