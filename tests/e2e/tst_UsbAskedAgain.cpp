#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QDateTime>
#include <QTest>

using loggersim::FaultKind;
using loggersim::SerialLogger;

/// A USB logger that is plugged in makes the station open the ports of all others anew, also of one that has a reading
/// under way.
class tst_UsbAskedAgain : public QObject
{
    Q_OBJECT

private slots:
    void isRecordedAtTheTimeOfItsPoll();
};

/// Between two polls, and no later than the station would still ask: the next poll comes when it is too late for that.
void tst_UsbAskedAgain::isRecordedAtTheTimeOfItsPoll()
{
    E2eFixture e2e;
    SerialLogger &asked = e2e.addUsbLogger();
    SerialLogger &newcomer = e2e.addUsbLogger();
    newcomer.pullOut();
    e2e.setInterval(10000);
    e2e.setLogRules(QStringLiteral("sorvanto.*.debug=false;sorvanto.device.debug=true"));
    QVERIFY2(e2e.start(), e2e.startError());
    const ServedReadings &served = e2e.servedByUsb(0);
    QVERIFY2(e2e.waitUntil([&] { return served.count() > 0; }), e2e.station().lastWords());

    asked.setFault({FaultKind::Silent, 0, {}});
    const int answered = served.count();
    const quint64 commands = asked.commands();
    QVERIFY2(e2e.waitUntil([&] { return asked.commands() > commands; }), e2e.station().lastWords());
    const qint64 polled = QDateTime::currentSecsSinceEpoch();
    QVERIFY(e2e.waitUntil([&] { return QDateTime::currentSecsSinceEpoch() > polled; }));
    asked.setFault({});
    QCOMPARE(served.count(), answered);
    QVERIFY2(newcomer.plugIn(), qPrintable(newcomer.errorString()));
    const QString shown = QStringLiteral("- ConfiguredDevice::takeReadings() : %1 : ").arg(served.serial());
    QVERIFY2(e2e.waitUntil([&] { return e2e.station().count(shown) > answered; }), e2e.station().lastWords());
    QVERIFY2(e2e.station().end(), e2e.station().lastWords());
    QVERIFY2(e2e.station().hasSucceeded(), e2e.station().lastWords());

    QVERIFY(served.timeOf(answered) > polled);
    const QList<RecordedRow> readings = readingsOf(served.serial(), e2e.rows());
    QCOMPARE(served.differences(readings), QString());
    QVERIFY(readings.size() > answered);
    QCOMPARE(ServedReadings::textOf(readings.at(answered)), served.at(answered));
    QVERIFY2(readings.at(answered).time <= polled,
             qPrintable(QString("%1 seconds too late").arg(readings.at(answered).time - polled)));
}

QTEST_GUILESS_MAIN(tst_UsbAskedAgain)
#include "tst_UsbAskedAgain.moc"
