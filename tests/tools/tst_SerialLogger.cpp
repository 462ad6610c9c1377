#include "loggersim/Fleet.h"
#include "loggersim/SerialLogger.h"

#include <QDir>
#include <QFile>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTest>

using namespace loggersim;

namespace {

const QByteArray poll = "ATCD\r\n";

/// The station's end of a USB logger's line.
class Line : public QSerialPort
{
public:
    bool reach(Fleet &fleet, const SimLogger &logger)
    {
        close();
        setPortName(fleet.usbTree().root() + "/dev/" + logger.address());
        return open(ReadWrite);
    }

    QByteArray ask(const QByteArray &command)
    {
        QByteArray received;
        write(command);
        QSignalSpy heard(this, &QSerialPort::readyRead);
        while (!received.endsWith('\n')) {
            if (!heard.wait())
                return {};
            received += readAll();
        }
        return received;
    }
};

} // namespace

/// Talks to USB loggers through their pseudo terminals.
class tst_SerialLogger : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pollIsAnsweredWithEcho();
    void networkCommandsAreUnknown();
    void bytesBeforeTheStationOpensDoNotComeBack();
    void reopening();
    void nobodyListening();
    void longReplies();
    void silent();
    void noEcho();
    void heldValues();
    void unpluggingHangsUp();
    void replugMakesANewLine();
    void replugLater();
    void swapExchangesPorts();
    void swapWithAnUnpluggedLogger();
    void treeWhilePluggedAndUnplugged();

private:
    void setFault(const QString &key, const QString &fault);

    std::unique_ptr<Fleet> m_fleet;
    SerialLogger *m_logger = nullptr;
    SerialLogger *m_other = nullptr;
    std::unique_ptr<Line> m_line;
};

void tst_SerialLogger::init()
{
    QString error;
    m_fleet = std::make_unique<Fleet>();
    m_logger = m_fleet->addUsbLogger(&error);
    m_other = m_fleet->addUsbLogger(&error);
    QVERIFY2(m_logger && m_other, qPrintable(error));
    m_line = std::make_unique<Line>();
    QVERIFY2(m_line->reach(*m_fleet, *m_logger), qPrintable(m_line->errorString()));
}

void tst_SerialLogger::cleanup()
{
    m_line.reset();
    m_fleet.reset();
}

void tst_SerialLogger::setFault(const QString &key, const QString &fault)
{
    QString error;
    QVERIFY2(m_fleet->setFault(key, fault, &error), qPrintable(error));
}

void tst_SerialLogger::pollIsAnsweredWithEcho()
{
    QByteArray before;
    for (int i = 0; i < 50; ++i) {
        const QByteArray reply = m_line->ask(poll);
        QVERIFY2(reply.startsWith("ATCD ") && reply.endsWith("\r\n") && reply.count(',') == 1, reply.constData());
        QVERIFY(reply != before);
        before = reply;
    }
    QTRY_COMPARE(m_logger->served(), quint64(50));
    QCOMPARE(m_other->served(), quint64(0));
    QCOMPARE(m_fleet->report(), QByteArray("00001001\tUSB\t50\n00001002\tUSB\t0\n"));
}

void tst_SerialLogger::networkCommandsAreUnknown()
{
    QCOMPARE(m_line->ask("ATDC\r\n"), QByteArray("ERR\r\n"));
    QCOMPARE(m_line->ask("ATBSET\r\n"), QByteArray("ERR\r\n"));
}

void tst_SerialLogger::bytesBeforeTheStationOpensDoNotComeBack()
{
    QFile node(m_fleet->usbTree().root() + "/dev/" + m_other->address());
    QVERIFY(node.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    QCOMPARE(node.write(poll), qint64(poll.size()));
    QTRY_COMPARE(m_other->served(), quint64(1));
    // An echo of the answer would arrive here as a second command.
    QVERIFY(!m_line->ask(poll).isEmpty());
    QCOMPARE(m_other->commands(), quint64(1));
}

void tst_SerialLogger::reopening()
{
    for (int i = 0; i < 5; ++i) {
        QVERIFY(m_line->reach(*m_fleet, *m_logger));
        QVERIFY(m_line->ask(poll).startsWith("ATCD "));
    }
}

void tst_SerialLogger::nobodyListening()
{
    m_line->close();
    setFault(m_logger->key(), "flood:65536");
    QVERIFY(m_line->reach(*m_fleet, *m_other));
    for (int i = 0; i < 20; ++i)
        QVERIFY(m_line->ask(poll).startsWith("ATCD "));
}

void tst_SerialLogger::longReplies()
{
    setFault(m_logger->key(), "manylines:5000");
    QByteArray received;
    m_line->write(poll);
    QSignalSpy heard(m_line.get(), &QSerialPort::readyRead);
    while (received.count('\n') < 5000) {
        QVERIFY(heard.wait());
        received += m_line->readAll();
    }
    QCOMPARE(received.count("ATCD "), 5000);
    QCOMPARE(m_logger->served(), quint64(0));
}

void tst_SerialLogger::silent()
{
    setFault(m_logger->key(), "silent");
    m_line->write(poll);
    QTRY_COMPARE(m_logger->commands(), quint64(1));
    setFault(m_logger->key(), "none");
    QCOMPARE(m_line->ask(poll).count('\n'), 1);
    QTRY_COMPARE(m_logger->served(), quint64(1));
}

void tst_SerialLogger::noEcho()
{
    setFault(m_logger->key(), "noecho");
    const QByteArray reply = m_line->ask(poll);
    QVERIFY(!reply.contains("ATCD"));
    QCOMPARE(reply.count(','), 1);
}

void tst_SerialLogger::heldValues()
{
    m_logger->curve().hold({1234, -5});
    QCOMPARE(m_line->ask(poll), QByteArray("ATCD 12.34,-0.05\r\n"));
}

void tst_SerialLogger::unpluggingHangsUp()
{
    QSignalSpy error(m_line.get(), &QSerialPort::errorOccurred);
    // Closed at its first error, or the port class would report it over and over.
    connect(
        m_line.get(), &QSerialPort::errorOccurred, m_line.get(), [this] { m_line->close(); }, Qt::QueuedConnection);
    setFault(m_logger->key(), "unplug");
    QVERIFY(!error.isEmpty() || error.wait());
    QCOMPARE(m_logger->address(), QString());
    QVERIFY(!QFile::exists(m_fleet->usbTree().root() + "/dev/ttyACM0"));
    QTRY_VERIFY(!m_line->isOpen());
    disconnect(m_line.get(), &QSerialPort::errorOccurred, m_line.get(), nullptr);
    setFault(m_logger->key(), "none");
    QCOMPARE(m_logger->address(), QString("ttyACM0"));
    QVERIFY(m_line->reach(*m_fleet, *m_logger));
    QVERIFY(m_line->ask(poll).startsWith("ATCD "));
}

void tst_SerialLogger::replugMakesANewLine()
{
    setFault(m_logger->key(), "replug:0");
    QTRY_VERIFY(m_logger->isPlugged());
    QVERIFY(m_line->reach(*m_fleet, *m_logger));
    QVERIFY(m_line->ask(poll).startsWith("ATCD "));
    QTRY_COMPARE(m_logger->served(), quint64(1));
}

void tst_SerialLogger::replugLater()
{
    setFault(m_logger->key(), "replug:3600000");
    QVERIFY(!m_logger->isPlugged());
    setFault(m_logger->key(), "none");
    QVERIFY(m_logger->isPlugged());
}

void tst_SerialLogger::swapExchangesPorts()
{
    m_logger->curve().hold({1100, 1100});
    m_other->curve().hold({2200, 2200});
    setFault(m_logger->key(), "swap:" + m_other->key());
    QCOMPARE(m_logger->address(), QString("ttyACM1"));
    QCOMPARE(m_other->address(), QString("ttyACM0"));
    Line second;
    QVERIFY(m_line->reach(*m_fleet, *m_logger));
    QVERIFY(second.reach(*m_fleet, *m_other));
    QCOMPARE(m_line->ask(poll), QByteArray("ATCD 11.00,11.00\r\n"));
    QCOMPARE(second.ask(poll), QByteArray("ATCD 22.00,22.00\r\n"));
    QCOMPARE(second.portName(), m_fleet->usbTree().root() + "/dev/ttyACM0");
}

void tst_SerialLogger::swapWithAnUnpluggedLogger()
{
    setFault(m_other->key(), "unplug");
    setFault(m_logger->key(), "swap:" + m_other->key());
    QCOMPARE(m_logger->address(), QString("ttyACM1"));
    QVERIFY(!m_other->isPlugged());
    setFault(m_other->key(), "none");
    QCOMPARE(m_other->address(), QString("ttyACM0"));
}

void tst_SerialLogger::treeWhilePluggedAndUnplugged()
{
    const QDir root(m_fleet->usbTree().root());
    QFile product(root.filePath("sys/bus/usb/devices/1-2/product"));
    QVERIFY(product.open(QIODevice::ReadOnly));
    QCOMPARE(product.readAll(), QByteArray("ZP_SERIES__00001002\n"));
    QVERIFY(QFile::exists(root.filePath("sys/class/tty/ttyACM1/device/../idVendor")));
    setFault(m_logger->key(), "unplug");
    setFault(m_other->key(), "unplug");
    for (const char *folder : {"dev", "sys/class/tty", "sys/bus/usb/devices"})
        QCOMPARE(QDir(root.filePath(folder)).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(),
                 0);
}

QTEST_GUILESS_MAIN(tst_SerialLogger)
#include "tst_SerialLogger.moc"
