#include "device/TelnetDevice.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <numeric>

/// A logger that sends far more than anybody asked for.
class tst_TelnetDevice_flood : public QObject
{
    Q_OBJECT

private slots:
    void isTakenInBoundedPieces();
};

/// The event loop, and with it the other loggers, gets its turn after each of them.
void tst_TelnetDevice_flood::isTakenInBoundedPieces()
{
    constexpr int largestPiece = 64 * 1024;
    QTcpServer logger;
    QVERIFY(logger.listen(QHostAddress::LocalHost));
    TelnetDevice link;
    link.setDeviceInfo(logger.serverAddress().toString(), logger.serverPort());
    link.setBuzzerFlag(true); // replies are passed on as they come
    QVERIFY(link.open());
    QTRY_VERIFY(link.isOpen() && logger.hasPendingConnections());

    QVector<int> sizes;
    connect(&link, &TelnetDevice::readyRead, this, [&sizes](const QString &text) { sizes += int(text.size()); });
    QTcpSocket *wire = logger.nextPendingConnection();
    const QByteArray flood(4 * 1024 * 1024, '5');
    wire->write(flood);
    // Much of it waits in the system before the link gets to see the first of it.
    QVERIFY(wire->waitForBytesWritten());
    QTRY_COMPARE(std::accumulate(sizes.cbegin(), sizes.cend(), 0), flood.size());
    QVERIFY(*std::max_element(sizes.cbegin(), sizes.cend()) <= largestPiece);
}

QTEST_GUILESS_MAIN(tst_TelnetDevice_flood)
#include "tst_TelnetDevice_flood.moc"
