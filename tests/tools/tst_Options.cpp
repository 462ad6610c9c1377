#include "loggersim/Options.h"

#include <QTest>

using namespace loggersim;

class tst_Options : public QObject
{
    Q_OBJECT

private slots:
    void everything();
    void usual();
    void programKeepsItsOwnOptions();
    void ownAddresses();
    void ownPorts();
    void systemChoosesPorts();
    void wrong_data();
    void wrong();
    void help();

private:
    static CommandLine read(const QString &line)
    {
        return readCommandLine(QStringList{"loggersim"} + line.split(' ', Qt::SkipEmptyParts));
    }
};

void tst_Options::everything()
{
    const CommandLine line = read(
        "--network 6 --usb 2 --seed 7 --steady 180 --addresses 127.0.2.1 --port 23 --discovery any --discovery-port "
        "50001 "
        "--fault 1=silent --fault 00001001=replug:300 --control c --interactive --report r --served l --project p.tpc "
        "--interval 5000 --settings s --keep-alive -- prog -x --usb 3");
    QVERIFY2(line.options, qPrintable(line.error));
    const Options &options = *line.options;
    QCOMPARE(options.network, 6);
    QCOMPARE(options.usb, 2);
    QCOMPARE(options.seed, quint16(7));
    QCOMPARE(options.steady, 180);
    QCOMPARE(options.address, QHostAddress("127.0.2.1"));
    QCOMPARE(options.port, quint16(23));
    QCOMPARE(*options.discoveryAddress, QHostAddress(QHostAddress::AnyIPv4));
    QCOMPARE(options.discoveryPort, quint16(50001));
    QCOMPARE(options.faults.size(), 2);
    QCOMPARE(options.faults.at(1), qMakePair(QString("00001001"), QString("replug:300")));
    QCOMPARE(options.controlPath, QString("c"));
    QVERIFY(options.interactive);
    QCOMPARE(options.reportFile, QString("r"));
    QCOMPARE(options.servedFile, QString("l"));
    QCOMPARE(options.projectFile, QString("p.tpc"));
    QCOMPARE(options.intervalMs, 5000);
    QCOMPARE(options.settingsFolder, QString("s"));
    QVERIFY(options.keepAlive);
    QCOMPARE(options.program, (QStringList{"prog", "-x", "--usb", "3"}));
}

void tst_Options::usual()
{
    const CommandLine line = read("--network 1");
    QVERIFY2(line.options, qPrintable(line.error));
    const Options &options = *line.options;
    QCOMPARE(options.usb, 0);
    QCOMPARE(options.addressOf(0), QHostAddress("127.0.1.1"));
    QCOMPARE(options.portOf(0), quint16(0));
    QCOMPARE(options.steady, 1);
    QVERIFY(!options.discoveryAddress);
    QCOMPARE(options.discoveryPort, quint16(50000));
    QCOMPARE(options.intervalMs, 1000);
    QVERIFY(options.program.isEmpty());
}

void tst_Options::programKeepsItsOwnOptions()
{
    const CommandLine line = read("--usb 1 prog --help --network 3");
    QVERIFY2(line.options, qPrintable(line.error));
    QCOMPARE(line.options->program, (QStringList{"prog", "--help", "--network", "3"}));
    QCOMPARE(line.options->network, 0);
}

void tst_Options::ownAddresses()
{
    const Options options = *read("--network 300 --addresses 127.0.1.255 --port 23").options;
    QCOMPARE(options.addressOf(0), QHostAddress("127.0.1.255"));
    QCOMPARE(options.addressOf(1), QHostAddress("127.0.2.0"));
    QCOMPARE(options.portOf(0), quint16(23));
    QCOMPARE(options.portOf(299), quint16(23));
}

void tst_Options::ownPorts()
{
    const Options options = *read("--network 3 --address 127.0.0.1 --port 2300").options;
    QCOMPARE(options.addressOf(2), QHostAddress("127.0.0.1"));
    QCOMPARE(options.portOf(0), quint16(2300));
    QCOMPARE(options.portOf(2), quint16(2302));
}

void tst_Options::systemChoosesPorts()
{
    const Options options = *read("--network 3 --address any").options;
    QCOMPARE(options.addressOf(2), QHostAddress(QHostAddress::AnyIPv4));
    QCOMPARE(options.portOf(2), quint16(0));
}

void tst_Options::wrong_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("reason");
    QTest::newRow("nothing") << ""
                             << "there is nothing to simulate: give --network or --usb";
    QTest::newRow("unknown option") << "--loud"
                                    << "Unknown option 'loud'.";
    QTest::newRow("no number") << "--network many"
                               << "--network takes a number from 0 to 10000, not \"many\"";
    QTest::newRow("negative") << "--usb=-1"
                              << "--usb takes a number from 0 to 256, not \"-1\"";
    QTest::newRow("port too high") << "--network 1 --port 65536"
                                   << "--port takes a number from 0 to 65535, not \"65536\"";
    QTest::newRow("not enough ports") << "--network 3 --address 127.0.0.1 --port 65534"
                                      << "there are not enough ports from 65534 on";
    QTest::newRow("no address") << "--network 1 --address here"
                                << "--address takes an IPv4 address, not \"here\"";
    QTest::newRow("IPv6") << "--network 1 --address ::1"
                          << "--address takes an IPv4 address, not \"::1\"";
    QTest::newRow("both kinds of address") << "--network 1 --address any --addresses 127.0.1.1"
                                           << "--address and --addresses exclude each other";
    QTest::newRow("counting from any") << "--network 1 --addresses any"
                                       << "--addresses needs a first address to count from";
    QTest::newRow("search address") << "--network 1 --discovery x"
                                    << "--discovery takes an IPv4 address, not \"x\"";
    QTest::newRow("fault without logger") << "--network 1 --fault silent"
                                          << "--fault takes LOGGER=FAULT, not \"silent\"";
    QTest::newRow("unknown fault") << "--network 1 --fault 1=loud"
                                   << "--fault 1=loud: there is no fault \"loud\"";
    QTest::newRow("settings alone") << "--network 1 --settings d"
                                    << "--settings needs --project: the settings open that project";
    QTest::newRow("keep-alive alone") << "--network 1 --keep-alive"
                                      << "--keep-alive needs --settings";
    QTest::newRow("interval alone") << "--network 1 --interval 5"
                                    << "--interval needs --project";
    QTest::newRow("interval") << "--network 1 --project p --interval 0"
                              << "--interval takes a number from 1 to 86400000, not \"0\"";
    QTest::newRow("empty path") << "--network 1 --report="
                                << "--report needs a path";
}

void tst_Options::wrong()
{
    QFETCH(QString, line);
    const CommandLine result = read(line);
    QVERIFY(!result.options);
    QTEST(result.error, "reason");
}

void tst_Options::help()
{
    const CommandLine line = read("--help");
    QVERIFY(!line.options);
    QCOMPARE(line.error, QString());
    for (const char *word :
         {"--network", "--usb", "--fault", "--control", "--project", "vanish", "hugenumbers", "counts", "-- PROGRAM"})
        QVERIFY2(line.help.contains(word), word);
}

QTEST_GUILESS_MAIN(tst_Options)
#include "tst_Options.moc"
