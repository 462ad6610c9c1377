#include "device/UsbLoggers.h"

#include <QCoreApplication>
#include <QSerialPort>
#include <QTextStream>
#include <QTimer>
#include <map>
#include <memory>

namespace {

constexpr int scanMs = 20;

void print(const QString &line)
{
    QTextStream(stdout) << line << '\n' << Qt::flush;
}

} // namespace

/// A station in small: looks for USB loggers with the real enumeration, polls them through the real port class and
/// prints what it sees.
class UsbProbe : public QObject
{
    Q_OBJECT

public:
    UsbProbe()
    {
        connect(&m_timer, &QTimer::timeout, this, &UsbProbe::scan);
        m_timer.start(scanMs);
    }

private:
    void scan()
    {
        const QList<UsbLogger> found = findUsbLoggers();
        if (!m_scanned || !(found == m_found)) {
            QString line("loggers");
            for (const UsbLogger &logger : found)
                line += ' ' + logger.portName + '=' + logger.serialNumber;
            print(line);
            m_ports.clear();
        }
        m_scanned = true;
        m_found = found;
        for (const UsbLogger &logger : found)
            poll(logger);
    }

    void poll(const UsbLogger &logger)
    {
        auto &port = m_ports[logger.serialNumber];
        if (!port)
            port = std::make_unique<QSerialPort>();
        if (!port->isOpen() && !open(*port, logger))
            return;
        port->write("ATCD\r\n");
    }

    bool open(QSerialPort &port, const UsbLogger &logger)
    {
        port.disconnect(this);
        port.setPortName(logger.portName);
        if (!port.open(QIODevice::ReadWrite))
            return false;
        const QString key = logger.serialNumber;
        connect(&port, &QSerialPort::readyRead, this, [&port, key] {
            // On a busy machine several answers may have come in.
            while (port.canReadLine())
                print("reading " + key + ' ' + port.portName() + ' ' +
                      QString::fromLatin1(port.readLine()).simplified());
        });
        connect(&port, &QSerialPort::errorOccurred, this, [this, &port, key](QSerialPort::SerialPortError error) {
            if (error == QSerialPort::NoError)
                return;
            // Nothing more of this error: the port class would report it over and over.
            port.disconnect(this);
            print("lost " + key);
            QTimer::singleShot(0, &port, [&port] { port.close(); });
        });
        return true;
    }

    QTimer m_timer;
    bool m_scanned = false;
    QList<UsbLogger> m_found;
    std::map<QString, std::unique_ptr<QSerialPort>> m_ports;
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    UsbProbe probe;
    return QCoreApplication::exec();
}

#include "usbprobe.moc"
