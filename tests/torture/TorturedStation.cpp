#include "TorturedStation.h"

#include "Shard.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

namespace {

constexpr int patienceMs = 60000;
// Enough for two batches.
constexpr int lastReadings = 5;

const QString takenReading = QStringLiteral("- ConfiguredDevice::takeReadings() : ");
const QString salvaged = QStringLiteral("InsertSerialData::createConnection : [ERROR] torn : set aside");
const QString replayed = QStringLiteral("SorvantoMain::reportSavedRows");

QString keyOf(const QString &line)
{
    return line.startsWith(takenReading) ? line.section(QLatin1Char(' '), 0, 3) : QString();
}

} // namespace

TorturedStation::TorturedStation(Shard &shard, int loggers, int usbLoggers)
    : m_shard(shard),
      m_folder(prepared(shard.path("project"))),
      m_e2e(m_folder),
      m_watch(shard.order().folder, m_folder)
{
    for (int i = 0; i < loggers; ++i) {
        m_e2e.addLogger();
        m_audit.follow(m_e2e.served(i));
    }
    for (int i = 0; i < usbLoggers; ++i) {
        m_e2e.addUsbLogger();
        m_audit.follow(m_e2e.servedByUsb(i));
    }
}

QString TorturedStation::prepared(const QString &folder)
{
    QDir().mkpath(folder);
    return folder;
}

bool TorturedStation::start()
{
    m_audit.beginRound();
    if (m_watch.prepare(m_e2e) && m_e2e.start())
        return true;
    m_shard.find(QString::fromLocal8Bit(m_e2e.startError()));
    return false;
}

void TorturedStation::endRound(const QString &how)
{
    settle();
    for (int i = 0; i < m_e2e.loggerCount(); ++i) {
        const int end = m_audit.servedBefore(i) + m_watch.shown(m_e2e.logger(i).port());
        m_audit.excuseUnless(i, [end](int reading) { return reading < end; });
    }
    noteRound(how);
}

/// What the loggers had handed over to the system is counted as served a moment later.
void TorturedStation::settle()
{
    const auto isOver = [this] {
        for (int i = 0; i < m_e2e.loggerCount(); ++i) {
            if (m_e2e.logger(i).connectionCount() > 0)
                return false;
        }
        return true;
    };
    if (!QTest::qWaitFor(isOver, patienceMs))
        m_shard.find(QStringLiteral("connections of the ended station stay open"));
}

void TorturedStation::noteRound(const QString &how)
{
    m_salvages += station().count(salvaged);
    m_replays += station().count(replayed);
    m_shard.endRound(how + QLatin1Char('\n') + station().lines().join(QLatin1Char('\n')));
}

void TorturedStation::finish()
{
    if (!m_e2e.fallSilent())
        m_shard.find(QString::fromLocal8Bit(station().lastWords()));
    end();
}

void TorturedStation::end()
{
    if (!station().end() || !station().hasSucceeded())
        m_shard.find(QString::fromLocal8Bit(station().lastWords()));
}

void TorturedStation::conclude(const std::function<QList<RecordedRow>()> &rows)
{
    m_watch.setKill({});
    m_watch.setSplash(0);
    if (!start())
        return;
    const int before = m_e2e.served(0).count();
    if (!m_e2e.waitUntil([&] { return m_e2e.haveServed(before + lastReadings, 1); }))
        m_shard.find(QString::fromLocal8Bit(station().lastWords()));
    finish();
    judge(rows ? rows() : m_e2e.rows());
    m_shard.result().remarks += QStringLiteral("part %1: %2 openings saved readings, %3 of them from a torn recording")
                                    .arg(m_shard.order().number)
                                    .arg(m_replays)
                                    .arg(m_salvages);
}

ServedReadings &TorturedStation::served(int logger)
{
    const int ofNetwork = m_e2e.loggerCount();
    return logger < ofNetwork ? m_e2e.served(logger) : m_e2e.servedByUsb(logger - ofNetwork);
}

/// Of readings that come at once only the last is shown. What was asked again, because its port was let go meanwhile,
/// may be answered twice; the second answer is shown only.
QStringList TorturedStation::shownLines() const
{
    QMap<QString, int> polls;
    bool isAnswer = true;
    QStringList shown;
    const QStringList &lines = m_e2e.station().lines();
    for (int i = 0; i < lines.size(); ++i) {
        const QString &line = lines.at(i);
        const QString port = line.section(QLatin1Char('['), 1).section(QLatin1Char(']'), 0, 0);
        if (line.startsWith(QLatin1String("SerialDevice::writeCommand")))
            ++polls[port];
        else if (line.startsWith(QLatin1String("SerialDevice::close")))
            polls[port] = 0;
        else if (line.startsWith(QLatin1String("SerialDevice::readData")))
            isAnswer = polls[port]-- > 0;
        else if (line.startsWith(QLatin1String("TelnetDevice::readData")))
            isAnswer = true;
        if (isAnswer && line.startsWith(takenReading) && keyOf(line) != keyOf(lines.value(i + 1)))
            shown += line;
    }
    return shown;
}

/// Both are in the order in which they were served.
void TorturedStation::demandShown(const std::function<bool(int logger, qint64 time)> &counts)
{
    for (int i = 0; i < m_e2e.loggerCount() + m_e2e.usbLoggerCount(); ++i) {
        ServedReadings &readings = served(i);
        readings.noteShown(shownLines());
        int shown = 0;
        m_audit.excuseUnless(i, [&](int reading) {
            const bool isShown = shown < readings.shown().size() && readings.shown().at(shown) == readings.at(reading);
            shown += isShown ? 1 : 0;
            return isShown && counts(i, readings.timeOf(reading));
        });
        if (shown < readings.shown().size())
            m_shard.find(QStringLiteral("%1 has shown %2, which was not served")
                             .arg(readings.serial(), readings.shown().at(shown)));
    }
}

void TorturedStation::judge(const QList<RecordedRow> &rows)
{
    m_shard.keepLog(station().lines().join(QLatin1Char('\n')));
    if (QFileInfo::exists(m_e2e.spool()))
        m_shard.find(QStringLiteral("a clean end leaves the spool"));
    m_shard.result().add(m_audit.judge(rows));
    if (const QString integrity = m_e2e.integrity(); integrity != QLatin1String("ok")) {
        ++m_shard.result().unsound;
        m_shard.find(QStringLiteral("integrity: ") + integrity);
    }
}
