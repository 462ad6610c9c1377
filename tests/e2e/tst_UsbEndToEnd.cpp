#include "RecordingReader.h"

#include "project/ProjectFile.h"
#include "support/NullSinkServer.h"

#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <map>

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

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    bool start();
    QByteArray control(const QByteArray &command);
    /// Readings served so far, by key.
    std::map<QString, int> served();
    /// Whether each of these loggers serves some more readings from now on.
    bool goOn(const QStringList &keys);
    bool end();
    void verifyRows(const QString &key, int served, int mayMiss);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<NullSinkServer> m_sound;
    QProcess m_simulator;
};

void tst_UsbEndToEnd::init()
{
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
    m_simulator.setProcessEnvironment(m_sound->environment());
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

void tst_UsbEndToEnd::pluggingWhileRecording()
{
    QVERIFY(start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("control")), patienceMs);
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));

    QCOMPARE(control("replug 00001001 300"), QByteArray("ok\n"));
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));

    QCOMPARE(control("unplug 00001002"), QByteArray("ok\n"));
    QVERIFY(goOn({networkKey, usbKey1}));
    QCOMPARE(control("plug 00001002"), QByteArray("ok\n"));
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));

    QCOMPARE(control("swap 00001001 00001002"), QByteArray("ok\n"));
    QVERIFY(goOn({networkKey, usbKey1, usbKey2}));

    auto counts = served();
    QVERIFY(end());
    QCOMPARE(m_simulator.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_simulator.exitCode(), 0);

    // One reading of each may have been on its way when the recording stopped. When a logger comes or goes, all serial
    // ports are closed and opened again, which may cost each of them one more; that happened up to five times.
    verifyRows(networkKey, counts[networkKey], 1);
    verifyRows(usbKey1, counts[usbKey1], 6);
    verifyRows(usbKey2, counts[usbKey2], 6);
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

/// Every reading that was served before the end is there, with this logger's values, and after the last one the gap
/// that closes the series.
void tst_UsbEndToEnd::verifyRows(const QString &key, int served, int mayMiss)
{
    const QList<RecordedRow> rows = RecordingReader(path("Cellar.dat")).rows();
    const QList<RecordedRow> readings = readingsOf(key, rows);
    for (const RecordedRow &row : readings)
        QVERIFY2(isWithin(row, ranges.at(key)), qPrintable(key + ' ' + row.channel1.toString()));
    QVERIFY2(readings.size() >= served - mayMiss, qPrintable(QString("%1: %2").arg(key).arg(readings.size())));
    QList<RecordedRow> gaps;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(gaps),
                 [&key](const RecordedRow &row) { return row.serial == key && row.isGap(); });
    QCOMPARE(gaps.size(), 1);
    QCOMPARE(gaps.first().time, readings.last().time + 1);
}

QTEST_GUILESS_MAIN(tst_UsbEndToEnd)
#include "tst_UsbEndToEnd.moc"
