#include "device/SerialDevice.h"
#include "support/LogCapture.h"
#include "support/MetaMethods.h"
#include "support/SerialLine.h"

#include <QSignalSpy>
#include <QTest>

class tst_SerialDevice : public QObject
{
    Q_OBJECT

private slots:
    void castsToItsInterface();
    void declaresSignalsAndSlotsInOrder();
    void setsThePortUpBeforeAnyOpen();
    void reportsConnectedOncePerOpen();
    void reportsConnectedWhereThePortDoesNot();
    void failedOpenEndsDisconnected();
    void opensNothingWithoutAName();
    void pollsWithItsCommand();
    void writeCommandReturnsZero();
    void writeOnAClosedPortReportsDisconnected();
    void passesOnOneNotification_data();
    void passesOnOneNotification();
    void dropsWhatHasNoEcho();
    void judgesEachNotificationAlone();
    void keepsEightBitText();
    void errors_data();
    void errors();
    void unpluggedPortReportsOnceAndClosesItself();
    void oneFaultIsReportedOnce();
    void failedPortForgetsItsName();
    void nameGivenWhileClosingIsKept();
    void closingAFailedPortAtOnceIsNotRepeated();
    void loggerThatSendsTooMuchIsCutOff();
    void survivesThePortsDeletion();
    void mayBeDeletedInsideItsSignals_data();
    void mayBeDeletedInsideItsSignals();
    void leavesNoPortBehind();
    void connectsThroughTheInterface();
    void logsItsLife();
};

namespace {

QSerialPort *portOf(SerialDevice &link)
{
    return link.findChild<QSerialPort *>();
}

} // namespace

void tst_SerialDevice::castsToItsInterface()
{
    SerialDevice link;
    AbstractDevice *expected = &link;
    QCOMPARE(static_cast<AbstractDevice *>(link.qt_metacast("AbstractDevice")), expected);
    QCOMPARE(static_cast<AbstractDevice *>(link.qt_metacast("com.sorvanto.AbstractDevice")), expected);
    QCOMPARE(qobject_cast<AbstractDevice *>(static_cast<QObject *>(&link)), expected);
    QCOMPARE(link.deviceType(), 1);
}

void tst_SerialDevice::declaresSignalsAndSlotsInOrder()
{
    const QMetaObject &meta = SerialDevice::staticMetaObject;
    QCOMPARE(methodsOf(meta, QMetaMethod::Signal),
             QStringList({"connected()", "disconnected()", "readyRead(QString)"}));
    QCOMPARE(methodsOf(meta, QMetaMethod::Slot),
             QStringList({"readData()", "serialDeleted()", "serialError(QSerialPort::SerialPortError)"}));
}

void tst_SerialDevice::setsThePortUpBeforeAnyOpen()
{
    SerialDevice link;
    const QSerialPort *port = portOf(link);
    QVERIFY(port);
    QCOMPARE(port->baudRate(QSerialPort::Input), 115200);
    QCOMPARE(port->baudRate(QSerialPort::Output), 115200);
    QCOMPARE(port->flowControl(), QSerialPort::NoFlowControl);
    QCOMPARE(port->parity(), QSerialPort::NoParity);
    QCOMPARE(port->dataBits(), QSerialPort::Data8);
    QCOMPARE(port->stopBits(), QSerialPort::OneStop);
    QVERIFY(!link.isOpen());
}

void tst_SerialDevice::reportsConnectedOncePerOpen()
{
    SerialLine logger;
    SerialDevice link;
    QSignalSpy connected(&link, &SerialDevice::connected);
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    link.setDeviceInfo(logger.portName(), 4711);
    for (int round = 1; round <= 2; ++round) {
        QVERIFY(link.open());
        QVERIFY(link.isOpen());
        QCOMPARE(connected.count(), round);
        link.close();
        QVERIFY(!link.isOpen());
    }
    QCOMPARE(disconnected.count(), 0);
    QCOMPARE(QStringLiteral("/dev/") + link.deviceName(), logger.portName());
}

void tst_SerialDevice::reportsConnectedWhereThePortDoesNot()
{
    SerialLine logger;
    SerialDevice link;
    QSignalSpy connected(&link, &SerialDevice::connected);
    // A port library that says nothing on a successful open.
    QObject::disconnect(portOf(link), &QSerialPort::errorOccurred, &link, nullptr);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    QCOMPARE(connected.count(), 1);
}

void tst_SerialDevice::failedOpenEndsDisconnected()
{
    SerialDevice link;
    QStringList signalOrder;
    QObject::connect(&link, &SerialDevice::connected, &link, [&] { signalOrder << "connected"; });
    QObject::connect(&link, &SerialDevice::disconnected, &link, [&] { signalOrder << "disconnected"; });
    link.setDeviceInfo("/dev/no-such-port", 23);
    QVERIFY(!link.open());
    QVERIFY(!link.isOpen());
    QCOMPARE(signalOrder.count("disconnected"), 1);
    QCOMPARE(signalOrder.last(), QString("disconnected"));
}

void tst_SerialDevice::opensNothingWithoutAName()
{
    LogCapture log;
    SerialDevice link;
    QSignalSpy connected(&link, &SerialDevice::connected);
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    QVERIFY(!link.open());
    QCOMPARE(connected.count(), 0);
    QCOMPARE(disconnected.count(), 1);
    QCOMPARE(log.count("SerialDevice::open : []"), 1);
    QCOMPARE(log.count("[ERROR] SerialDevice::open"), 1);
    QCOMPARE(log.warnings(), QStringList());
}

void tst_SerialDevice::pollsWithItsCommand()
{
    SerialLine logger;
    SerialDevice link;
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    link.write();
    QTRY_COMPARE(logger.received(), QByteArray("ATCD\r\n"));
}

void tst_SerialDevice::writeCommandReturnsZero()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    QCOMPARE(link.writeCommand("HELLO"), qint64(0));
    QTRY_COMPARE(logger.received(), QByteArray("HELLO"));
    QCOMPARE(log.count("SerialDevice::writeCommand : [" + logger.portName() + "] :HELLO"), 1);
}

void tst_SerialDevice::writeOnAClosedPortReportsDisconnected()
{
    LogCapture log;
    SerialDevice link;
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    link.setDeviceInfo("COM5", 0);
    QCOMPARE(link.writeCommand("HELLO"), qint64(0));
    QCOMPARE(disconnected.count(), 1);
    QVERIFY(log.lines().contains("[ERROR] SerialDevice::writeCommand : [COM5] :HELLO"));
    QCOMPARE(log.warnings(), QStringList());
}

void tst_SerialDevice::passesOnOneNotification_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QString>("passedOn");
    QTest::newRow("echo and reading") << QByteArray("ATCD 21.50,45.10\r\n") << "21.50,45.10\n";
    QTest::newRow("two replies") << QByteArray("ATCD 21.50,45.10\r\nATCD 21.60,45.20\r\n")
                                 << "21.50,45.10\n21.60,45.20\n";
    QTest::newRow("echo on its own line") << QByteArray("ATCD\r\n21.50,45.10\r\n") << "\n21.50,45.10\n";
    QTest::newRow("carriage return inside the echo") << QByteArray("AT\rCD 1,2\n") << "1,2\n";
    QTest::newRow("echo that appears once the spaces are gone") << QByteArray("ATCD A T C D1,2\n") << "1,2\n";
    QTest::newRow("no values") << QByteArray("ATCD ----,----\r\n") << "----,----\n";
}

void tst_SerialDevice::passesOnOneNotification()
{
    QFETCH(QByteArray, sent);
    QFETCH(QString, passedOn);
    SerialLine logger;
    SerialDevice link;
    QSignalSpy readyRead(&link, &SerialDevice::readyRead);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    logger.send(sent);
    QVERIFY(readyRead.wait());
    QCOMPARE(readyRead.count(), 1);
    QCOMPARE(readyRead.first().first().toString(), passedOn);
}

void tst_SerialDevice::dropsWhatHasNoEcho()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    QSignalSpy readyRead(&link, &SerialDevice::readyRead);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    const QString errorStart = "[ERROR] SerialDevice::readData no 'ATCD' : [" + logger.portName() + "] :";
    logger.send("21.50,45.10\r\n");
    QTRY_VERIFY(log.lines().contains(errorStart + "21.50,45.10\n"));
    logger.send("atcd 21.50,45.10\r\n");
    QTRY_VERIFY(log.lines().contains(errorStart + "atcd 21.50,45.10\n"));
    QCOMPARE(readyRead.count(), 0);
}

void tst_SerialDevice::judgesEachNotificationAlone()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    QSignalSpy readyRead(&link, &SerialDevice::readyRead);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    logger.send("ATCD 21.5");
    QTRY_COMPARE(readyRead.count(), 1);
    logger.send("0,45.10\r\n");
    QTRY_COMPARE(log.count("[ERROR] SerialDevice::readData no 'ATCD'"), 1);
    QCOMPARE(readyRead.count(), 1);
    QCOMPARE(readyRead.first().first().toString(), QString("21.5"));
}

void tst_SerialDevice::keepsEightBitText()
{
    SerialLine logger;
    SerialDevice link;
    QSignalSpy readyRead(&link, &SerialDevice::readyRead);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    logger.send(QByteArray("ATCD\0\xB0\xFF,2\n", 9));
    QVERIFY(readyRead.wait());
    QCOMPARE(readyRead.first().first().toString(), QString::fromLatin1("\0\xB0\xFF,2", 5));
}

void tst_SerialDevice::errors_data()
{
    QTest::addColumn<QSerialPort::SerialPortError>("error");
    QTest::addColumn<int>("connectedCount");
    QTest::addColumn<int>("loggedNumber");
    constexpr int unlogged = 0;
    QTest::newRow("none") << QSerialPort::NoError << 1 << unlogged;
    QTest::newRow("device not found") << QSerialPort::DeviceNotFoundError << 0 << 1;
    QTest::newRow("permission") << QSerialPort::PermissionError << 0 << 2;
    QTest::newRow("open") << QSerialPort::OpenError << 0 << 3;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QTest::newRow("parity") << QSerialPort::ParityError << 0 << unlogged;
    QTest::newRow("framing") << QSerialPort::FramingError << 0 << unlogged;
    QTest::newRow("break") << QSerialPort::BreakConditionError << 0 << unlogged;
#endif
    QTest::newRow("write") << QSerialPort::WriteError << 0 << 7;
    QTest::newRow("read") << QSerialPort::ReadError << 0 << 8;
    QTest::newRow("resource") << QSerialPort::ResourceError << 0 << 9;
    QTest::newRow("unsupported operation") << QSerialPort::UnsupportedOperationError << 0 << 10;
    QTest::newRow("unknown") << QSerialPort::UnknownError << 0 << 11;
    QTest::newRow("timeout") << QSerialPort::TimeoutError << 0 << 12;
    QTest::newRow("not open") << QSerialPort::NotOpenError << 0 << unlogged;
    QTest::newRow("of no known kind") << QSerialPort::SerialPortError(14) << 0 << unlogged;
}

void tst_SerialDevice::errors()
{
    QFETCH(QSerialPort::SerialPortError, error);
    QFETCH(int, connectedCount);
    QFETCH(int, loggedNumber);
    LogCapture log;
    SerialDevice link;
    QSignalSpy connected(&link, &SerialDevice::connected);
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    link.setDeviceInfo("COM5", 0);
    link.serialError(error);
    QCOMPARE(connected.count(), connectedCount);
    QCOMPARE(disconnected.count(), loggedNumber > 0 ? 1 : 0);
    const QStringList expected =
        loggedNumber > 0 ? QStringList("SerialDevice::serialError : [COM5] err : " + QString::number(loggedNumber))
                         : QStringList();
    QCOMPARE(log.lines(), expected);
}

void tst_SerialDevice::unpluggedPortReportsOnceAndClosesItself()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    QSignalSpy portErrors(portOf(link), &QSerialPort::errorOccurred);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    bool openInside = false;
    QObject::connect(&link, &SerialDevice::disconnected, &link, [&] { openInside = link.isOpen(); });
    logger.unplug();
    QVERIFY(disconnected.wait());
    QVERIFY2(openInside, "the port must not be closed inside its own error signal");
    QTRY_VERIFY(!link.isOpen());
    // Turns of the event loop in which a port that is still watched would report again.
    for (int turn = 0; turn < 50; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(disconnected.count(), 1);
    QCOMPARE(log.count("SerialDevice::serialError : [" + logger.portName() + "] err : "), 1);
    QCOMPARE(log.count("SerialDevice::close : "), 1);
    QVERIFY2(portErrors.count() < 20, qPrintable(QString::number(portErrors.count())));
}

void tst_SerialDevice::oneFaultIsReportedOnce()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    // What an unplugged port does until it is closed, a thousand times a millisecond.
    for (int i = 0; i < 1000; ++i)
        emit portOf(link)->errorOccurred(i % 2 ? QSerialPort::ReadError : QSerialPort::ResourceError);
    QCOMPARE(disconnected.count(), 1);
    QTRY_VERIFY(!link.isOpen());
    QCOMPARE(disconnected.count(), 1);
    QCOMPARE(log.count("SerialDevice::serialError : "), 1);
    // The next spell is news again.
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    link.serialError(QSerialPort::ReadError);
    QCOMPARE(disconnected.count(), 2);
}

void tst_SerialDevice::failedPortForgetsItsName()
{
    SerialLine logger;
    SerialLine other;
    SerialDevice link;
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    link.serialError(QSerialPort::ReadError);
    QTRY_VERIFY(!link.isOpen());
    // The port is there, yet it may be another logger's by now.
    QVERIFY(!link.open());
    QVERIFY(!link.isOpen());
    QCOMPARE(disconnected.count(), 2);
    link.setDeviceInfo(other.portName(), 0);
    QVERIFY(link.open());
}

void tst_SerialDevice::nameGivenWhileClosingIsKept()
{
    SerialLine logger;
    SerialLine successor;
    SerialDevice link;
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    link.serialError(QSerialPort::ResourceError);
    link.setDeviceInfo(successor.portName(), 0);
    QVERIFY(link.open());
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
    QVERIFY2(link.isOpen(), "closing belongs to the port that failed, not to its successor");
    link.write();
    QTRY_COMPARE(successor.received(), QByteArray("ATCD\r\n"));
}

void tst_SerialDevice::closingAFailedPortAtOnceIsNotRepeated()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    link.serialError(QSerialPort::WriteError);
    link.close();
    QCoreApplication::processEvents();
    QCOMPARE(log.count("SerialDevice::close : "), 1);
    QVERIFY(!link.open());
}

void tst_SerialDevice::loggerThatSendsTooMuchIsCutOff()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    QSignalSpy readyRead(&link, &SerialDevice::readyRead);
    QSignalSpy disconnected(&link, &SerialDevice::disconnected);
    link.setDeviceInfo(logger.portName(), 0);
    for (int cut = 1; cut <= 3; ++cut) {
        QVERIFY(link.open());
        link.write();
        logger.send(QByteArray("ATCD 1e308,1e308\n").repeated(replyBounds::linesPerPoll + 1));
        QTRY_VERIFY(!link.isOpen());
        QCOMPARE(disconnected.count(), cut);
    }
    QCOMPARE(log.count("[ERROR] SerialDevice::readData : [" + logger.portName() + "] : more than 128 lines"), 1);

    readyRead.clear();
    QVERIFY2(link.open(), "its port is as good as before");
    link.write();
    logger.send("ATCD 1,2\n");
    QVERIFY(readyRead.wait());
    QCOMPARE(readyRead.first().first().toString(), QString("1,2\n"));
    logger.send(QByteArray("ATCD 3,4\n").repeated(replyBounds::linesPerPoll / 2));
    QVERIFY2(readyRead.wait(), "several readings are legal");
    QCOMPARE(disconnected.count(), 3);
}

void tst_SerialDevice::survivesThePortsDeletion()
{
    LogCapture log;
    SerialLine logger;
    SerialDevice link;
    link.setDeviceInfo(logger.portName(), 0);
    QVERIFY(link.open());
    delete portOf(link);
    QCOMPARE(log.count("SerialDevice::serialDeleted : [" + logger.portName() + "]"), 1);
    QVERIFY(!link.isOpen());
    QVERIFY(!link.open());
    QCOMPARE(link.writeCommand("HELLO"), qint64(0));
    QCOMPARE(log.count("[ERROR] SerialDevice::writeCommand"), 0);
    QCOMPARE(link.deviceName(), QString());
    link.write();
    link.readData();
    link.close();
}

void tst_SerialDevice::mayBeDeletedInsideItsSignals_data()
{
    QTest::addColumn<QString>("signalName");
    QTest::newRow("connected") << "connected";
    QTest::newRow("disconnected") << "disconnected";
    QTest::newRow("readyRead") << "readyRead";
}

void tst_SerialDevice::mayBeDeletedInsideItsSignals()
{
    QFETCH(QString, signalName);
    SerialLine logger;
    QObject receiver;
    QPointer<SerialDevice> link = new SerialDevice;
    QPointer<QSerialPort> port = portOf(*link);
    link->setDeviceInfo(logger.portName(), 0);
    bool outlivesItsSignal = false;
    const auto deleteLink = [&] {
        delete link.data();
        outlivesItsSignal = port && !port->isOpen();
    };
    if (signalName == "connected")
        QObject::connect(link, &SerialDevice::connected, &receiver, deleteLink);
    else if (signalName == "disconnected")
        QObject::connect(link, &SerialDevice::disconnected, &receiver, deleteLink);
    else
        QObject::connect(link, &SerialDevice::readyRead, &receiver, deleteLink);
    link->open();
    if (signalName == "disconnected")
        logger.unplug();
    else
        logger.send("ATCD 1,2\r\n");
    QTRY_VERIFY(!link);
    QVERIFY2(outlivesItsSignal, "a port is used after its end when it is deleted inside its own signal");
    QTRY_VERIFY(!port);
}

void tst_SerialDevice::leavesNoPortBehind()
{
    SerialLine logger;
    auto link = std::make_unique<SerialDevice>();
    const QPointer<QSerialPort> port = portOf(*link);
    link->setDeviceInfo(logger.portName(), 0);
    QVERIFY(link->open());
    link.reset();
    QVERIFY(!port);
    // Its lock is gone too: the next owner can open the same port.
    SerialDevice next;
    next.setDeviceInfo(logger.portName(), 0);
    QVERIFY(next.open());
}

void tst_SerialDevice::connectsThroughTheInterface()
{
    SerialDevice link;
    AbstractDevice &device = link;
    SerialDevice receiver;
    QSignalSpy heard(&receiver, &SerialDevice::connected);
    QVERIFY(device.connect(SIGNAL(connected()), &receiver, SIGNAL(connected())));
    link.serialError(QSerialPort::NoError);
    QCOMPARE(heard.count(), 1);
    QVERIFY(device.disconnect(SIGNAL(connected()), &receiver, SIGNAL(connected())));
    link.serialError(QSerialPort::NoError);
    QCOMPARE(heard.count(), 1);
}

void tst_SerialDevice::logsItsLife()
{
    SerialLine logger;
    const QString name = "[" + logger.portName() + "]";
    LogCapture log;
    {
        SerialDevice link;
        link.setDeviceInfo(logger.portName(), 0);
        QVERIFY(link.open());
        logger.send("ATCD 1,2\n");
        QSignalSpy readyRead(&link, &SerialDevice::readyRead);
        QVERIFY(readyRead.wait());
        link.close();
    }
    QCOMPARE(log.lines(), QStringList({"SerialDevice::open : " + name, "SerialDevice::readData : " + name + " :1,2\n",
                                       "SerialDevice::close : " + name, "SerialDevice::~SerialDevice : " + name}));
}

QTEST_GUILESS_MAIN(tst_SerialDevice)
#include "tst_SerialDevice.moc"
