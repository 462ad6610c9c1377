#include "Station.h"

#include "loggersim/ControlServer.h"
#include "loggersim/Fleet.h"

#include <QFile>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace loggersim;

class tst_ControlCommands : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void wrongLines_data();
    void wrongLines();
    void counts();
    void faultByKeyAndNumber();
    void valuesOffsetAndCurve();
    void storedLimitsAndCommands();
    void connections();
    void unplugAndPlug();
    void help();
    void overALocalSocket();
    void leftOverSocketIsReplaced();
    void otherFileInTheWayIsLeftAlone();

private:
    QByteArray run(const QByteArray &line) { return m_commands->execute(line); }

    std::unique_ptr<Fleet> m_fleet;
    std::unique_ptr<ControlCommands> m_commands;
    NetworkLogger *m_logger = nullptr;
    QByteArray m_key;
    int m_quits = 0;
};

void tst_ControlCommands::init()
{
    QString error;
    m_fleet = std::make_unique<Fleet>();
    m_logger = m_fleet->addNetworkLogger(QHostAddress::LocalHost, 0, &error);
    QVERIFY(m_logger);
    QVERIFY(m_fleet->addUsbLogger(&error));
    m_key = m_logger->key().toLatin1();
    m_quits = 0;
    m_commands = std::make_unique<ControlCommands>(m_fleet.get(), [this] { ++m_quits; });
}

void tst_ControlCommands::wrongLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("empty") << QByteArray() << QByteArray("error there is no command \"\"\n");
    QTest::newRow("unknown") << QByteArray("dance") << QByteArray("error there is no command \"dance\"\n");
    QTest::newRow("too few words") << QByteArray("curve")
                                   << QByteArray("error usage: curve KEY: back to readings of its own\n");
    QTest::newRow("too many words") << QByteArray("curve 1 2")
                                    << QByteArray("error usage: curve KEY: back to readings of its own\n");
    QTest::newRow("no such logger") << QByteArray("curve 9") << QByteArray("error there is no logger \"9\"\n");
    QTest::newRow("no such fault") << QByteArray("fault 1 loud") << QByteArray("error there is no fault \"loud\"\n");
    QTest::newRow("not for this kind") << QByteArray("fault 2 refuse")
                                       << QByteArray("error a USB logger cannot have the fault \"refuse\"\n");
    QTest::newRow("network logger unplugged")
        << QByteArray("unplug 1") << QByteArray("error a network logger cannot have the fault \"unplug\"\n");
    QTest::newRow("swapped with itself") << QByteArray("swap 2 2")
                                         << QByteArray("error \"2\" is not another USB logger\n");
    QTest::newRow("swapped with another kind")
        << QByteArray("swap 2 1") << QByteArray("error \"1\" is not another USB logger\n");
    QTest::newRow("no numbers") << QByteArray("values 1 warm wet") << QByteArray("error values takes two numbers\n");
    QTest::newRow("not finite") << QByteArray("offset 1 nan 0") << QByteArray("error offset takes two numbers\n");
}

void tst_ControlCommands::wrongLines()
{
    QFETCH(QByteArray, line);
    QTEST(run(line), "answer");
}

void tst_ControlCommands::counts()
{
    Station station;
    QVERIFY(station.reach(*m_logger));
    QVERIFY(!station.ask("ATDC\r\n").isEmpty());
    QTRY_COMPARE(m_logger->served(), quint64(1));
    const QByteArray port = QByteArray::number(m_logger->port());
    QCOMPARE(run("counts"), m_key + " network 1 127.0.0.1 " + port + "\n00001001 USB 0 ttyACM0 0\nend\n");
    QCOMPARE(run("unplug 2"), QByteArray("ok\n"));
    QCOMPARE(run("counts"), m_key + " network 1 127.0.0.1 " + port + "\n00001001 USB 0 - 0\nend\n");
}

void tst_ControlCommands::faultByKeyAndNumber()
{
    QCOMPARE(run("fault " + m_key + " slow:70"), QByteArray("ok\n"));
    QVERIFY(m_logger->suffersFrom(FaultKind::Slow));
    QCOMPARE(m_logger->fault().number, 70);
    QCOMPARE(run("  fault   1  none "), QByteArray("ok\n"));
    QVERIFY(m_logger->suffersFrom(FaultKind::None));
}

void tst_ControlCommands::valuesOffsetAndCurve()
{
    QCOMPARE(run("values 1 40.5 -3"), QByteArray("ok\n"));
    QCOMPARE(m_logger->curve().next().toText(), QByteArray("40.50,-3.00"));
    QCOMPARE(run("offset 1 100 0"), QByteArray("ok\n"));
    QVERIFY(m_logger->curve().next().temperature > 9000);
    QCOMPARE(run("curve 1"), QByteArray("ok\n"));
    QVERIFY(m_logger->curve().next().temperature < 1000);
}

void tst_ControlCommands::storedLimitsAndCommands()
{
    QCOMPARE(run("stored 1"), QByteArray("none\n"));
    QCOMPARE(run("commands 1"), QByteArray("end\n"));
    Station station;
    QVERIFY(station.reach(*m_logger));
    QCOMPARE(station.ask("ATBMIN1 10.00\r\n"), QByteArray("OK\r\n"));
    QCOMPARE(station.ask("ATBAL ON 5\r\n"), QByteArray("OK\r\n"));
    QCOMPARE(station.ask("ATBSET\r\n"), QByteArray("OK\r\n"));
    QCOMPARE(run("stored 1"), QByteArray("10.00 0.00 0.00 0.00 ON 5\n"));
    QCOMPARE(run("commands 1"), QByteArray("ATBMIN1 10.00\nATBAL ON 5\nATBSET\nend\n"));
}

void tst_ControlCommands::connections()
{
    QCOMPARE(run("connections 1"), QByteArray("0\n"));
    Station station;
    QVERIFY(station.reach(*m_logger));
    QCOMPARE(run("connections 1"), QByteArray("1\n"));
}

void tst_ControlCommands::unplugAndPlug()
{
    const QString node = m_fleet->usbTree().root() + "/dev/ttyACM0";
    QVERIFY(QFile::exists(node));
    QCOMPARE(run("unplug 2"), QByteArray("ok\n"));
    QVERIFY(!QFile::exists(node));
    QCOMPARE(run("plug 2"), QByteArray("ok\n"));
    QVERIFY(QFile::exists(node));
    QCOMPARE(run("replug 2 3600000"), QByteArray("ok\n"));
    QVERIFY(!QFile::exists(node));
    QCOMPARE(run("replug 2"), QByteArray("ok\n"));
    QTRY_VERIFY(QFile::exists(node));
}

void tst_ControlCommands::help()
{
    const QByteArray answer = run("help");
    for (const char *name : {"counts", "fault", "values", "offset", "curve", "stored", "commands", "quit", "swap"})
        QVERIFY2(answer.contains(QByteArray("  ") + name), name);
    QVERIFY(answer.endsWith("\nend\n"));
}

void tst_ControlCommands::overALocalSocket()
{
    const QTemporaryDir folder;
    ControlServer server(m_fleet.get());
    QSignalSpy quit(&server, &ControlServer::quitRequested);
    QVERIFY2(server.listen(folder.filePath("control")), qPrintable(server.errorString()));
    QLocalSocket socket;
    socket.connectToServer(folder.filePath("control"));
    QTRY_COMPARE(socket.state(), QLocalSocket::ConnectedState);
    QByteArray answers;
    connect(&socket, &QLocalSocket::readyRead, this, [&] { answers += socket.readAll(); });
    socket.write("fault 1 sil");
    QTRY_COMPARE(socket.bytesToWrite(), qint64(0));
    socket.write("ent\ncurve 1\nquit\n");
    QTRY_COMPARE(answers, QByteArray("ok\nok\nok\n"));
    QCOMPARE(quit.size(), 1);
    QVERIFY(m_logger->suffersFrom(FaultKind::Silent));
}

void tst_ControlCommands::leftOverSocketIsReplaced()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("control");
    const QString aside = folder.filePath("aside");
    {
        ControlServer crashed(m_fleet.get());
        QVERIFY(crashed.listen(path));
        QVERIFY(QFile::rename(path, aside));
    }
    QVERIFY(QFile::rename(aside, path));
    ControlServer server(m_fleet.get());
    QVERIFY2(server.listen(path), qPrintable(server.errorString()));
}

void tst_ControlCommands::otherFileInTheWayIsLeftAlone()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("control"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("mine"), qint64(4));
    file.close();
    ControlServer server(m_fleet.get());
    QVERIFY(!server.listen(file.fileName()));
    QVERIFY(!server.errorString().isEmpty());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("mine"));
}

QTEST_GUILESS_MAIN(tst_ControlCommands)
#include "tst_ControlCommands.moc"
