#pragma once

#include <QIODevice>
#include <QSocketNotifier>
#include <memory>

namespace loggersim {

/// The logger's end of a serial line. Closing it hangs up on whoever has the other end open, like pulling the plug.
class PseudoTerminal : public QIODevice
{
    Q_OBJECT

public:
    explicit PseudoTerminal(QObject *parent = nullptr);
    ~PseudoTerminal() override;

    /// Makes a new pair of ends. False, with errorString(), when the system has none left.
    bool open();
    void close() override;
    /// The device node of the station's end.
    QString stationEnd() const { return m_stationEnd; }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;
    qint64 bytesToWrite() const override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool makePair();
    void slotReadable();
    void slotWritable();

    int m_master = -1;
    int m_slave = -1;
    QString m_stationEnd;
    QByteArray m_in;
    QByteArray m_out;
    std::unique_ptr<QSocketNotifier> m_readNotifier;
    std::unique_ptr<QSocketNotifier> m_writeNotifier;
};

} // namespace loggersim
