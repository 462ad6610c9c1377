#include "device/TelnetDevice.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QSignalSpy>
#include <QTest>

using namespace replyBounds;

/// A logger that sends far more than anybody asked for.
class tst_TelnetDevice_flood : public QObject
{
    Q_OBJECT

private slots:
    void isCutOff_data();
    void isCutOff();
    void isCutOffWithinAnExchange();
    void isReadAgainOnceItBehaves();
    void severalReadingsAreLegal();
};

namespace {

/// A link that stays connected unless it is closed for a reason, to a logger that does what the test says.
struct PolledLogger
{
    TemporaryInterval interval{1000};
    LogCapture log;
    ScriptedLogger logger;
    TelnetDevice link;
    QSignalSpy readyRead{&link, &TelnetDevice::readyRead};

    PolledLogger()
    {
        logger.setSilent();
        link.setDeviceInfo(logger.address(), logger.port());
    }
    /// Returns once the logger has heard the command that goes out as soon as the connection stands.
    bool poll()
    {
        const int before = logger.commands().size();
        link.write();
        return QTest::qWaitFor([&] { return logger.commands().size() > before; });
    }
    int cutOffs() const
    {
        return log.count(QString("[ERROR] TelnetDevice::readData : [127.0.0.1] : [%1] : ").arg(logger.port()));
    }
};

} // namespace

void tst_TelnetDevice_flood::isCutOff_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("bytes") << QByteArray("ATDC 1,2,").repeated(500000);
    QTest::newRow("lines") << QByteArray("ATDC 1,2\r\n").repeated(linesPerPoll + 1);
    QTest::newRow("large numbers") << QByteArray("ATDC 1e308,1e308\r\n").repeated(4000);
    QTest::newRow("field") << "ATDC " + QByteArray(fieldLength + 1, '5') + ",1\r\n";
}

void tst_TelnetDevice_flood::isCutOff()
{
    QFETCH(QByteArray, sent);
    PolledLogger polled;
    for (int poll = 1; poll <= 3; ++poll) {
        QVERIFY(polled.poll());
        polled.logger.send(sent);
        QTRY_VERIFY(!polled.link.isOpen());
        QTRY_COMPARE(polled.logger.openConnections(), 0);
        QCOMPARE(polled.logger.accepted(), poll);
    }
    int passedOn = 0;
    for (const QList<QVariant> &arguments : std::as_const(polled.readyRead))
        passedOn += arguments.first().toString().size();
    QVERIFY2(passedOn <= 3 * bytesPerPoll, qPrintable(QString::number(passedOn)));
    QCOMPARE(polled.cutOffs(), 1);
}

void tst_TelnetDevice_flood::isCutOffWithinAnExchange()
{
    PolledLogger polled;
    polled.link.setBuzzerFlag(true);
    QVERIFY(polled.link.open());
    QTRY_VERIFY(polled.link.isOpen());
    QTRY_COMPARE(polled.logger.openConnections(), 1);
    QCOMPARE(polled.link.writeCommand("ATBSET\r\n"), qint64(8));
    polled.logger.send(QByteArray("OK\r\n").repeated(linesPerPoll + 1));
    QTRY_VERIFY(!polled.link.isOpen());
    QCOMPARE(polled.cutOffs(), 1);
}

void tst_TelnetDevice_flood::isReadAgainOnceItBehaves()
{
    PolledLogger polled;
    QVERIFY(polled.poll());
    polled.logger.send(QByteArray("ATDC 1,2\r\n").repeated(linesPerPoll + 1));
    QTRY_VERIFY(!polled.link.isOpen());
    polled.readyRead.clear();
    polled.logger.setReply("ATDC 3,4\r\n");
    QVERIFY(polled.poll());
    QTRY_COMPARE(polled.readyRead.count(), 1);
    QCOMPARE(polled.readyRead.first().first().toString(), QString("3,4\n"));
    QVERIFY(polled.link.isOpen());
}

void tst_TelnetDevice_flood::severalReadingsAreLegal()
{
    PolledLogger polled;
    QVERIFY(polled.poll());
    polled.logger.send(QByteArray("ATDC 1,2\r\n").repeated(linesPerPoll));
    QTRY_COMPARE(polled.readyRead.count(), 1);
    QCOMPARE(polled.readyRead.first().first().toString().count('\n'), linesPerPoll);
    QVERIFY(polled.link.isOpen());
    QCOMPARE(polled.cutOffs(), 0);
}

QTEST_GUILESS_MAIN(tst_TelnetDevice_flood)
#include "tst_TelnetDevice_flood.moc"
