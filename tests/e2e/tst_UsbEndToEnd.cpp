#include "RecordingReader.h"

#include "project/ProjectFile.h"
#include "support/NullSinkServer.h"

#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <iterator>
#include <map>
#include <set>

namespace {

// No step comes near it unless something is broken.
constexpr int patienceMs = 60000;

const QString networkKey = QStringLiteral("020001000001");
const QString usbKey1 = QStringLiteral("00001001");
const QString usbKey2 = QStringLiteral("00001002");

/// What a logger of the simulator reads where it hangs; no two of the three have it in common.
struct Range
{
    double temperature;
    double humidity;
};
const std::map<QString, Range> ranges{{networkKey, {4, 68}}, {usbKey1, {24.5, 71}}, {usbKey2, {21.5, 42}}};

bool isWithin(const RecordedRow &row, const Range &range)
{
    return qAbs(row.channel1.toDouble() - range.temperature) < 4 && qAbs(row.channel2.toDouble() - range.humidity) < 12;
}

} // namespace

/// The program itself under the simulator, which shows it USB loggers and pulls and exchanges their plugs.
class tst_UsbEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pluggingWhileRecording();
    void hangingLoggerComesBack();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    bool start();
    QByteArray control(const QByteArray &command);
    /// Readings served so far, by key.
    std::map<QString, int> served();
    /// Whether each of these loggers serves some more readings from now on.
    bool goOn(const QStringList &keys);
    bool end();
    /// Pulls the plug, or exchanges it, and lets everything go on; notes that @p keys were away meanwhile.
    bool disturb(const QByteArray &command, const QStringList &keys, const QByteArray &undo = {});
    void verifyRows(const QString &key);
    static std::set<quint32> polledSeconds(const QList<RecordedRow> &rows);
    /// Whether the logger was, some time between two of its readings.
    bool wasAway(const QString &key, quint32 last, quint32 next) const;

    /// Seconds from the first to the last in which a logger may have been away.
    struct Absence
    {
        QString key;
        qint64 begin;
        qint64 end;
    };

    QList<Absence> m_absences;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<NullSinkServer> m_sound;
    QProcess m_simulator;
};

void tst_UsbEndToEnd::init()
{
    m_absences.clear();
    m_folder = std::make_unique<QTemporaryDir>();
    m_sound = std::make_unique<NullSinkServer>();
    QVERIFY2(m_sound->start(), qPrintable(m_sound->errorString()));
}

void tst_UsbEndToEnd::cleanup()
{
    end();
    m_sound.reset();
    m_folder.reset();
}

bool tst_UsbEndToEnd::start()
{
    QProcessEnvironment environment = m_sound->environment();
    environment.insert("QT_LOGGING_RULES", "sorvanto.*.debug=false;sorvanto.device.debug=true");
    m_simulator.setProcessEnvironment(environment);
    m_simulator.setProcessChannelMode(QProcess::MergedChannels);
    m_simulator.setStandardOutputFile(path("log"));
    // The simulator must not outlive this program, whatever becomes of it; it takes the station along.
    m_simulator.start("setpriv", {"--pdeathsig", "TERM",
                                  LOGGERSIM,     "--network",
                                  "1",           "--usb",
                                  "2",           "--interval",
                                  "1000",        "--keep-alive",
                                  "--control",   path("control"),
                                  "--project",   path("Cellar.tpc"),
                                  "--settings",  path("config"),
                                  "--report",    path("report"),
                                  "--",          STATION});
    return m_simulator.waitForStarted();
}

bool tst_UsbEndToEnd::end()
{
    if (m_simulator.state() == QProcess::NotRunning)
        return true;
    m_simulator.terminate();
    return QTest::qWaitFor([this] { return m_simulator.state() == QProcess::NotRunning; }, patienceMs);
}

QByteArray tst_UsbEndToEnd::control(const QByteArray &command)
{
    QLocalSocket socket;
    QByteArray answer;
    connect(&socket, &QLocalSocket::readyRead, &socket, [&] { answer += socket.readAll(); });
    socket.connectToServer(path("control"));
    socket.write(command + '\n');
    const bool done = QTest::qWaitFor([&] { return answer.endsWith("ok\n") || answer.endsWith("end\n"); });
    return done ? answer : "no answer: " + answer;
}

std::map<QString, int> tst_UsbEndToEnd::served()
{
    std::map<QString, int> counts;
    const QList<QByteArray> lines = control("counts").split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() > 2)
            counts[QString::fromLatin1(words.at(0))] = words.at(2).toInt();
    }
    return counts;
}

bool tst_UsbEndToEnd::goOn(const QStringList &keys)
{
    const auto before = served();
    const auto isOver = [&] {
        auto now = served();
        return m_simulator.state() == QProcess::NotRunning ||
               std::all_of(keys.cbegin(), keys.cend(), [&](const QString &key) {
                   return before.count(key) == 1 && now[key] >= before.at(key) + 3;
               });
    };
    return QTest::qWaitFor(isOver, patienceMs) && m_simulator.state() == QProcess::Running;
}

bool tst_UsbEndToEnd::disturb(const QByteArray &command, const QStringList &keys, const QByteArray &undo)
{
    const QStringList all{networkKey, usbKey1, usbKey2};
    QStringList others = all;
    for (const QString &key : keys)
        others.removeOne(key);
    const qint64 begin = QDateTime::currentSecsSinceEpoch();
    const bool isBack =
        control(command) == "ok\n" && (undo.isEmpty() || (goOn(others) && control(undo) == "ok\n")) && goOn(all);
    for (const QString &key : keys)
        m_absences << Absence{key, begin, QDateTime::currentSecsSinceEpoch()};
    return isBack;
}

void tst_UsbEndToEnd::pluggingWhileRecording()
{
    QVERIFY(start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("control")), patienceMs);
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));

    for (int round = 0; round < 4; ++round)
        QVERIFY(disturb("unplug 00001002", {usbKey2}, "plug 00001002"));
    QVERIFY(disturb("replug 00001001 300", {usbKey1}));
    QVERIFY(disturb("swap 00001001 00001002", {usbKey1, usbKey2}));

    QVERIFY(end());
    QCOMPARE(m_simulator.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_simulator.exitCode(), 0);

    for (const QString &key : {networkKey, usbKey1, usbKey2})
        verifyRows(key);
    QCOMPARE(RecordingReader(path("Cellar.dat")).integrity(), QStringLiteral("ok"));

    std::map<QString, QString> ports;
    const auto devices = ProjectFile(path("Cellar.tpc")).readDevices();
    QVERIFY(devices);
    for (const DeviceEntry &entry : *devices)
        ports[entry.serialNumber] = entry.address;
    QCOMPARE(ports[usbKey1], QStringLiteral("ttyACM1"));
    QCOMPARE(ports[usbKey2], QStringLiteral("ttyACM0"));
    const QSettings project(path("Cellar.tpc"), QSettings::IniFormat);
    QCOMPARE(project.value("record_stop_time").toString().size(), 19);
}

/// A USB logger that takes commands and answers none is let go, opened again and heard as soon as it answers.
void tst_UsbEndToEnd::hangingLoggerComesBack()
{
    QVERIFY(start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("control")), patienceMs);
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));
    const auto closings = [this] {
        QFile log(path("log"));
        return log.open(QIODevice::ReadOnly) ? log.readAll().count("SerialDevice::close : [ttyACM0]") : 0;
    };
    const int before = closings();
    const qint64 begin = QDateTime::currentSecsSinceEpoch();
    QCOMPARE(control("fault 00001001 stall"), QByteArray("ok\n"));
    QTRY_VERIFY_WITH_TIMEOUT(closings() >= before + 2, 2 * patienceMs);
    QCOMPARE(control("fault 00001001 none"), QByteArray("ok\n"));
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));
    m_absences << Absence{usbKey1, begin, QDateTime::currentSecsSinceEpoch()};
    QVERIFY(end());
    for (const QString &key : {networkKey, usbKey1, usbKey2})
        verifyRows(key);
}

/// While it was in reach a logger has one reading, with its own values, for each poll of the station, and after the
/// last one the gap that closes the series. An answer that comes only after the next poll stands beside that poll's
/// own. Of the last poll the answer may not have come any more.
void tst_UsbEndToEnd::verifyRows(const QString &key)
{
    const QList<RecordedRow> rows = RecordingReader(path("Cellar.dat")).rows();
    const QList<RecordedRow> readings = readingsOf(key, rows);
    QVERIFY(readings.size() > 3);
    const std::set<quint32> polled = polledSeconds(rows);
    int missing = 0;
    int missingWhileAway = 0;
    for (int i = 0; i < readings.size(); ++i) {
        const RecordedRow &row = readings.at(i);
        QVERIFY2(isWithin(row, ranges.at(key)), qPrintable(key + ' ' + row.channel1.toString()));
        const quint32 last = i > 0 ? readings.at(i - 1).time : row.time - 1;
        if (row.time == last) {
            int &cameLate = missing > 0 ? missing : missingWhileAway;
            QVERIFY2(--cameLate >= 0, qPrintable(QString("%1: twice at %2").arg(key).arg(row.time)));
        } else {
            int &without = wasAway(key, last, row.time) ? missingWhileAway : missing;
            without += int(std::distance(polled.upper_bound(last), polled.find(row.time)));
        }
    }
    QVERIFY2(missing == 0, qPrintable(QString("%1: %2 missing").arg(key).arg(missing)));
    QVERIFY2(readings.last().time >= *std::prev(polled.end(), 2), qPrintable(key));
    QList<RecordedRow> gaps;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(gaps),
                 [&key](const RecordedRow &row) { return row.serial == key && row.isGap(); });
    QCOMPARE(gaps.size(), 1);
    QCOMPARE(gaps.first().time, readings.last().time + 1);
}

/// All loggers are polled together: when one of them has a reading, all were asked. A busy machine may let seconds go
/// by without.
std::set<quint32> tst_UsbEndToEnd::polledSeconds(const QList<RecordedRow> &rows)
{
    std::set<quint32> seconds;
    for (const QString &key : {networkKey, usbKey1, usbKey2}) {
        const QList<RecordedRow> readings = readingsOf(key, rows);
        for (const RecordedRow &row : readings)
            seconds.insert(row.time);
    }
    return seconds;
}

bool tst_UsbEndToEnd::wasAway(const QString &key, quint32 last, quint32 next) const
{
    return std::any_of(m_absences.cbegin(), m_absences.cend(), [&](const Absence &absence) {
        return absence.key == key && last <= absence.end && next >= absence.begin;
    });
}

QTEST_GUILESS_MAIN(tst_UsbEndToEnd)
#include "tst_UsbEndToEnd.moc"
