#include "DialogParts.h"
#include "dialogs/SensingOptionUsbDialog.h"
#include "support/MetaMethods.h"
#include "support/SerialLine.h"

#include <QDoubleSpinBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

/// The option dialog of a USB logger on a real serial line.
class tst_SensingOptionUsbDialog : public QObject
{
    Q_OBJECT

private slots:
    void declaresItsSlots();
    void storesTheRangeAsGiven();
    void changeIsInForceWhenTold();
    void portBecomesTheDefault();
    void loggerMayBePulledMeanwhile();
};

namespace {

struct Attic
{
    SerialLine logger;
    ConfiguredDevice device{"B2", UsbInterface};
    QWidget window;
    QPointer<SensingOptionUsbDialog> dialog;

    Attic() { device.setDeviceInfo("Attic", "Air", "Damp", logger.portName(), 4001); }

    bool open()
    {
        if (!device.openDevice())
            return false;
        dialog = new SensingOptionUsbDialog(&device, &window);
        dialog->show();
        return true;
    }

    void setRange(double min1, double max1, double min2, double max2)
    {
        part<QDoubleSpinBox>(dialog, "doubleSpinBox_min_ch1").setValue(min1);
        part<QDoubleSpinBox>(dialog, "doubleSpinBox_max_ch1").setValue(max1);
        part<QDoubleSpinBox>(dialog, "doubleSpinBox_min_ch2").setValue(min2);
        part<QDoubleSpinBox>(dialog, "doubleSpinBox_max_ch2").setValue(max2);
    }
    void confirm() { part<QPushButton>(dialog, "pushButton_confirm").click(); }
};

} // namespace

void tst_SensingOptionUsbDialog::declaresItsSlots()
{
    const QMetaObject &meta = SensingOptionUsbDialog::staticMetaObject;
    for (const char *method : {"confirm()", "checkCustomUnitPolicy(int)", "slotReject()", "sensingConfirm()"})
        QVERIFY2(meta.indexOfMethod(method) >= 0, method);
}

void tst_SensingOptionUsbDialog::storesTheRangeAsGiven()
{
    Attic attic;
    QVERIFY(attic.open());
    attic.setRange(30, 10, -10000000, 0.01);
    QVERIFY(attic.device.alarmRange() == AlarmRange());
    attic.confirm();
    QVERIFY(attic.device.alarmRange() == (AlarmRange{30, 10, -10000000, 0.01F}));
    QTRY_VERIFY(!attic.dialog);
    QCOMPARE(attic.logger.received(), QByteArray());
}

void tst_SensingOptionUsbDialog::changeIsInForceWhenTold()
{
    Attic attic;
    QVERIFY(attic.open());
    attic.setRange(1, 2, 3, 4);
    QSignalSpy accepted(attic.dialog, &QDialog::accepted);
    AlarmRange told;
    connect(attic.dialog, &SensingOptionDialog::sensingConfirm, this, [&] {
        told = attic.device.alarmRange();
        QCOMPARE(accepted.count(), 0);
    });
    attic.confirm();
    QVERIFY(told == (AlarmRange{1, 2, 3, 4}));
    QCOMPARE(accepted.count(), 1);
}

void tst_SensingOptionUsbDialog::portBecomesTheDefault()
{
    Attic attic;
    QVERIFY(attic.open());
    attic.confirm();
    QCOMPARE(int(attic.device.port()), 23);
    QCOMPARE(attic.device.address(), attic.logger.portName());
    QVERIFY(attic.device.isOpen());
}

void tst_SensingOptionUsbDialog::loggerMayBePulledMeanwhile()
{
    Attic attic;
    QVERIFY(attic.open());
    attic.setRange(1, 2, 3, 4);
    attic.logger.unplug();
    QTRY_VERIFY(!attic.device.isConnected());
    QVERIFY(attic.dialog->isVisible());
    attic.confirm();
    QVERIFY(attic.device.alarmRange() == (AlarmRange{1, 2, 3, 4}));
    QTRY_VERIFY(!attic.dialog);
}

QTEST_MAIN(tst_SensingOptionUsbDialog)
#include "tst_SensingOptionUsbDialog.moc"
