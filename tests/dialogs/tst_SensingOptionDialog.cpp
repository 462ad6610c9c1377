#include "DialogParts.h"
#include "device/ChannelUnit.h"
#include "dialogs/SensingOptionTelnetDialog.h"
#include "dialogs/SensingOptionUsbDialog.h"
#include "support/TemporaryInterval.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

/// What the option dialogs of both kinds of logger have in common.
class tst_SensingOptionDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void cleanup();

    void formIsAsDesigned();
    void showsTheDevice();
    void namesAreNoMarkup();
    void offersTheUnits();
    void limitsFollowTheConnection_data();
    void limitsFollowTheConnection();
    void limitsHaveADecimalPointEverywhere();
    void missingName_data();
    void missingName();
    void appliesNamesAndUnits();
    void customUnitIsTyped();
    void onlyCustomIsEditable();
    void enterAddsNoUnit();
    void longCustomUnitCannotBeTyped();
    void longStoredCustomUnitStaysWhole();
    void emptiedCustomUnit();
    void unknownUnitReadsAsUndefined();
    void untouchedLimitsAreNotRounded();
    void closingTheWindowHidesIt_data();
    void closingTheWindowHidesIt();
    void slotRejectDeletesIt();
    void goesWithItsDevice();
    void listenerMayDeleteTheDialog();
    void listenerMayDeleteTheDevice();
};

namespace {

/// A device, as it stands, and a dialog on it.
struct Opened
{
    QWidget window;
    std::unique_ptr<ConfiguredDevice> device;
    QPointer<SensingOptionDialog> dialog;

    explicit Opened(bool connected = true)
    {
        QFETCH_GLOBAL(int, kind);
        device = std::make_unique<ConfiguredDevice>("A1B2C3D4E5F6", kind);
        device->setDeviceInfo("Cellar", "Air", "Damp", "127.0.0.1", 23);
        if (connected)
            device->deviceConnected();
    }

    SensingOptionDialog *open()
    {
        if (device->interfaceKind() == UsbInterface)
            dialog = new SensingOptionUsbDialog(device.get(), &window);
        else
            dialog = new SensingOptionTelnetDialog(device.get(), &window);
        dialog->show();
        return dialog;
    }

    bool confirm()
    {
        part<QPushButton>(dialog, "pushButton_confirm").click();
        return QTest::qWaitFor([this] { return !dialog; });
    }
};

const char *const limitNames[]{"doubleSpinBox_min_ch1", "doubleSpinBox_max_ch1", "doubleSpinBox_min_ch2",
                               "doubleSpinBox_max_ch2"};

QStringList itemsOf(const QComboBox &combo)
{
    QStringList items;
    for (int i = 0; i < combo.count(); ++i)
        items << combo.itemText(i);
    return items;
}

QLineEdit &editorOf(QWidget *dialog, const char *combo)
{
    return *part<QComboBox>(dialog, combo).lineEdit();
}

} // namespace

void tst_SensingOptionDialog::initTestCase_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("keyCaption");
    QTest::newRow("USB") << int(UsbInterface) << QByteArray("label_serialnumber") << "SERIAL NUMBER";
    QTest::newRow("network") << int(NetworkInterface) << QByteArray("label_macaddr") << "MAC ADDRESS";
}

void tst_SensingOptionDialog::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void tst_SensingOptionDialog::formIsAsDesigned()
{
    QFETCH_GLOBAL(int, kind);
    QFETCH_GLOBAL(QString, keyCaption);
    Opened opened;
    const QDialog *dialog = opened.open();
    QCOMPARE(dialog->windowTitle(), QString("Sorvanto Lite"));
    QVERIFY(dialog->isModal());
    QCOMPARE(dialog->font().family(), QString("Segoe UI"));
    QVERIFY(part<QFrame>(dialog, "topFrame").styleSheet().contains("qlineargradient"));
    const auto &logo = part<QLabel>(dialog, "label_top_logo");
    QCOMPARE(logo.pixmap(Qt::ReturnByValue).size() / logo.devicePixelRatioF(), QSize(135, 30));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_name").title(), QString("NAME"));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_channel1").title(), QString("CHANNEL 1"));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_channel2").title(), QString("CHANNEL 2"));
    QCOMPARE(part<QPushButton>(dialog, "pushButton_confirm").text(), QString("CONFIRM"));
    QMap<QString, int> captions;
    const auto labels = dialog->findChildren<QLabel *>();
    for (const QLabel *label : labels)
        ++captions[label->text()];
    QCOMPARE(captions.value("DEVICE NAME"), 1);
    QCOMPARE(captions.value(keyCaption), 1);
    for (const char *caption : {"CHANNEL NAME", "CHANNEL TYPE", "ALARM RANGE", "~"})
        QCOMPARE(captions.value(caption), 2);
    for (const char *name : limitNames) {
        const auto &limit = part<QDoubleSpinBox>(dialog, name);
        QCOMPARE(limit.minimum(), -10000000.0);
        QCOMPARE(limit.maximum(), 10000000.0);
        QCOMPARE(limit.decimals(), 2);
    }
    QCOMPARE(dialog->findChild<QComboBox *>("comboBox_buzzeralarm") != nullptr, kind == NetworkInterface);
}

void tst_SensingOptionDialog::showsTheDevice()
{
    QFETCH_GLOBAL(QByteArray, key);
    Opened opened;
    opened.device->setAlarmRange(-5, 30.1F, 0.25F, 9999999);
    opened.device->setUnits(2, 3);
    const QWidget *dialog = opened.open();
    QCOMPARE(part<QLabel>(dialog, key).text(), QString("A1B2C3D4E5F6"));
    QCOMPARE(part<QLineEdit>(dialog, "lineEdit_devicename").text(), QString("Cellar"));
    QCOMPARE(part<QLineEdit>(dialog, "lineEdit_ch1name").text(), QString("Air"));
    QCOMPARE(part<QLineEdit>(dialog, "lineEdit_ch2name").text(), QString("Damp"));
    QCOMPARE(part<QComboBox>(dialog, "comboBox_unit_ch1").currentIndex(), 2);
    QCOMPARE(part<QComboBox>(dialog, "comboBox_unit_ch2").currentIndex(), 3);
    QCOMPARE(part<QDoubleSpinBox>(dialog, limitNames[0]).value(), -5.0);
    QCOMPARE(part<QDoubleSpinBox>(dialog, limitNames[1]).value(), 30.1);
    QCOMPARE(part<QDoubleSpinBox>(dialog, limitNames[2]).value(), 0.25);
    QCOMPARE(part<QDoubleSpinBox>(dialog, limitNames[3]).value(), 9999999.0);
}

void tst_SensingOptionDialog::namesAreNoMarkup()
{
    QFETCH_GLOBAL(QByteArray, key);
    Opened opened;
    QCOMPARE(part<QLabel>(opened.open(), key).textFormat(), Qt::PlainText);
}

void tst_SensingOptionDialog::offersTheUnits()
{
    Opened opened;
    opened.device->setCustomUnits(QString(), "ppm");
    const QWidget *dialog = opened.open();
    QStringList units{"Undefined", QStringLiteral("Temperature(\u00B0C)"), QStringLiteral("Temperature(\u00B0F)"),
                      "Humidity(%)", "Custom"};
    const auto &first = part<QComboBox>(dialog, "comboBox_unit_ch1");
    QCOMPARE(itemsOf(first), units);
    units.last() = "ppm";
    QCOMPARE(itemsOf(part<QComboBox>(dialog, "comboBox_unit_ch2")), units);
    for (int code = 0; code <= 4; ++code)
        QCOMPARE(first.itemData(code).toInt(), code);
}

void tst_SensingOptionDialog::limitsFollowTheConnection_data()
{
    QTest::addColumn<bool>("connected");
    QTest::newRow("connected") << true;
    QTest::newRow("disconnected") << false;
}

void tst_SensingOptionDialog::limitsFollowTheConnection()
{
    QFETCH(bool, connected);
    Opened opened(connected);
    const QWidget *dialog = opened.open();
    for (const char *name : limitNames)
        QCOMPARE(part<QDoubleSpinBox>(dialog, name).isEnabled(), connected);
    if (auto *rule = dialog->findChild<QComboBox *>("comboBox_buzzeralarm"))
        QCOMPARE(rule->isEnabled(), connected);
    QVERIFY(part<QLineEdit>(dialog, "lineEdit_devicename").isEnabled());
    QVERIFY(part<QComboBox>(dialog, "comboBox_unit_ch1").isEnabled());
}

void tst_SensingOptionDialog::limitsHaveADecimalPointEverywhere()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    Opened opened;
    opened.device->setAlarmRange(-1234.5F, 30, 0, 0);
    auto &limit = part<QDoubleSpinBox>(opened.open(), limitNames[0]);
    QCOMPARE(limit.text(), QString("-1234.50"));
    limit.selectAll();
    QTest::keyClicks(&limit, "21.75");
    QCOMPARE(limit.value(), 21.75);
}

void tst_SensingOptionDialog::missingName_data()
{
    QTest::addColumn<QStringList>("emptied");
    QTest::addColumn<QString>("message");
    const QString device = "INFORMATION: Enter the Device Name.";
    const QString first = "INFORMATION: Enter the Channel-1 Name.";
    const QString second = "INFORMATION: Enter the Channel-2 Name.";
    QTest::newRow("device") << QStringList{"lineEdit_devicename"} << device;
    QTest::newRow("channel 1") << QStringList{"lineEdit_ch1name"} << first;
    QTest::newRow("channel 2") << QStringList{"lineEdit_ch2name"} << second;
    QTest::newRow("both channels") << QStringList{"lineEdit_ch1name", "lineEdit_ch2name"} << first;
    QTest::newRow("all") << QStringList{"lineEdit_devicename", "lineEdit_ch1name", "lineEdit_ch2name"} << device;
}

void tst_SensingOptionDialog::missingName()
{
    QFETCH(QStringList, emptied);
    QFETCH(QString, message);
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    for (const QString &name : emptied)
        part<QLineEdit>(dialog, name.toLatin1()).clear();
    part<QComboBox>(dialog, "comboBox_unit_ch1").setCurrentIndex(1);
    part<QPushButton>(dialog, "pushButton_confirm").click();
    QCOMPARE(messagesOf(dialog), QStringList(message));
    QVERIFY(dialog->isVisible());
    QCOMPARE(part<QPushButton>(dialog, "pushButton_confirm").text(), QString("CONFIRM"));
    QCOMPARE(confirmed.count(), 0);
    QCOMPARE(opened.device->deviceName(), QString("Cellar"));
    QCOMPARE(opened.device->ch1Unit(), 0);
}

void tst_SensingOptionDialog::appliesNamesAndUnits()
{
    Opened opened;
    opened.device->setUnits(4, 4);
    opened.device->setCustomUnits("ppm", "lux");
    SensingOptionDialog *dialog = opened.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    part<QLineEdit>(dialog, "lineEdit_ch1name").setText("North");
    part<QLineEdit>(dialog, "lineEdit_ch2name").setText("South");
    part<QComboBox>(dialog, "comboBox_unit_ch1").setCurrentIndex(1);
    QVERIFY(opened.confirm());
    QCOMPARE(confirmed.count(), 1);
    QCOMPARE(opened.device->deviceName(), QString("Attic"));
    QCOMPARE(opened.device->ch1Name(), QString("North"));
    QCOMPARE(opened.device->ch2Name(), QString("South"));
    QCOMPARE(opened.device->address(), QString("127.0.0.1"));
    QCOMPARE(opened.device->ch1Unit(), 1);
    QCOMPARE(opened.device->ch1CustomUnit(), QString());
    QCOMPARE(opened.device->ch2Unit(), 4);
    QCOMPARE(opened.device->ch2CustomUnit(), QString("lux"));
}

void tst_SensingOptionDialog::customUnitIsTyped()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    part<QComboBox>(dialog, "comboBox_unit_ch2").setCurrentIndex(4);
    QTest::keyClicks(&editorOf(dialog, "comboBox_unit_ch2"), "ppm"); // over the selected "Custom"
    QVERIFY(opened.confirm());
    QCOMPARE(opened.device->ch2Unit(), 4);
    QCOMPARE(opened.device->ch2CustomUnit(), QString("ppm"));
    QCOMPARE(opened.device->ch1CustomUnit(), QString());
    const auto &again = part<QComboBox>(opened.open(), "comboBox_unit_ch2");
    QCOMPARE(again.itemText(4), QString("ppm"));
    QCOMPARE(again.currentText(), QString("ppm"));
    QVERIFY(again.isEditable());
}

void tst_SensingOptionDialog::onlyCustomIsEditable()
{
    Opened opened;
    const QWidget *dialog = opened.open();
    auto &first = part<QComboBox>(dialog, "comboBox_unit_ch1");
    for (int code : {1, 4, 3, 4, 0, 2}) {
        first.setCurrentIndex(code);
        QCOMPARE(first.isEditable(), code == 4);
        QVERIFY(!part<QComboBox>(dialog, "comboBox_unit_ch2").isEditable());
    }
}

void tst_SensingOptionDialog::enterAddsNoUnit()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    part<QLineEdit>(dialog, "lineEdit_devicename").clear(); // Enter confirms as well: the dialog is to stay
    auto &combo = part<QComboBox>(dialog, "comboBox_unit_ch1");
    const QStringList before = itemsOf(combo);
    combo.setCurrentIndex(4);
    QVERIFY2(!combo.completer(), "\"Humid\" would become \"Humidity(%)\"");
    QTest::keyClicks(combo.lineEdit(), "Humid");
    QTest::keyClick(combo.lineEdit(), Qt::Key_Return);
    QCOMPARE(itemsOf(combo), before);
    QCOMPARE(combo.currentText(), QString("Humid"));
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    QVERIFY(opened.confirm());
    QCOMPARE(opened.device->ch1Unit(), 4);
    QCOMPARE(opened.device->ch1CustomUnit(), QString("Humid"));
}

void tst_SensingOptionDialog::longCustomUnitCannotBeTyped()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    part<QComboBox>(dialog, "comboBox_unit_ch1").setCurrentIndex(4);
    QTest::keyClicks(&editorOf(dialog, "comboBox_unit_ch1"), "123456789012345");
    QCOMPARE(part<QComboBox>(dialog, "comboBox_unit_ch1").currentText(), QString("12345678901"));
}

void tst_SensingOptionDialog::longStoredCustomUnitStaysWhole()
{
    Opened opened;
    opened.device->setUnits(4, 4);
    opened.device->setCustomUnits("micrograms per litre", "micrograms per litre");
    SensingOptionDialog *dialog = opened.open();
    editorOf(dialog, "comboBox_unit_ch2").setText("lux");
    QVERIFY(opened.confirm());
    QCOMPARE(opened.device->ch1CustomUnit(), QString("micrograms per litre"));
    QCOMPARE(opened.device->ch2CustomUnit(), QString("lux"));
}

void tst_SensingOptionDialog::emptiedCustomUnit()
{
    Opened opened;
    opened.device->setUnits(4, 0);
    opened.device->setCustomUnits("ppm", QString());
    editorOf(opened.open(), "comboBox_unit_ch1").clear();
    QVERIFY(opened.confirm());
    QCOMPARE(opened.device->ch1Unit(), 4);
    QCOMPARE(opened.device->ch1CustomUnit(), QString());
    QCOMPARE(part<QComboBox>(opened.open(), "comboBox_unit_ch1").currentText(), QString("Custom"));
}

void tst_SensingOptionDialog::unknownUnitReadsAsUndefined()
{
    Opened opened;
    opened.device->setUnits(7, -1);
    const QWidget *dialog = opened.open();
    QCOMPARE(part<QComboBox>(dialog, "comboBox_unit_ch1").currentText(), QString("Undefined"));
    QCOMPARE(part<QComboBox>(dialog, "comboBox_unit_ch2").currentText(), QString("Undefined"));
}

void tst_SensingOptionDialog::untouchedLimitsAreNotRounded()
{
    Opened opened;
    opened.device->setAlarmRange(1.125F, 2e8F, 0.001F, 4);
    opened.open();
    QVERIFY(opened.confirm());
    QVERIFY(opened.device->alarmRange() == (AlarmRange{1.125F, 2e8F, 0.001F, 4}));
}

void tst_SensingOptionDialog::closingTheWindowHidesIt_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("window button") << false;
    QTest::newRow("Escape") << true;
}

void tst_SensingOptionDialog::closingTheWindowHidesIt()
{
    QFETCH(bool, byKey);
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    if (byKey)
        QTest::keyClick(dialog, Qt::Key_Escape);
    else
        dialog->close();
    QVERIFY(!dialog->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(opened.dialog);
    QCOMPARE(confirmed.count(), 0);
    QCOMPARE(opened.device->deviceName(), QString("Cellar"));
}

void tst_SensingOptionDialog::slotRejectDeletesIt()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    QSignalSpy rejected(dialog, &QDialog::rejected);
    dialog->slotReject();
    QVERIFY(!dialog->isVisible());
    QCOMPARE(rejected.count(), 1);
    QTRY_VERIFY(!opened.dialog);
}

void tst_SensingOptionDialog::goesWithItsDevice()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    part<QLineEdit>(dialog, "lineEdit_devicename").clear();
    dialog->confirm(); // with a message on top
    opened.device.reset();
    QVERIFY(!dialog->isVisible());
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    dialog->confirm();
    QTRY_VERIFY(!opened.dialog);
}

void tst_SensingOptionDialog::listenerMayDeleteTheDialog()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    connect(dialog, &SensingOptionDialog::sensingConfirm, this, [dialog] { delete dialog; });
    dialog->confirm();
    QVERIFY(!opened.dialog);
}

void tst_SensingOptionDialog::listenerMayDeleteTheDevice()
{
    Opened opened;
    SensingOptionDialog *dialog = opened.open();
    connect(dialog, &SensingOptionDialog::sensingConfirm, this, [&opened] { opened.device.reset(); });
    dialog->confirm();
    QVERIFY(!dialog->isVisible());
    QTRY_VERIFY(!opened.dialog);
}

QTEST_MAIN(tst_SensingOptionDialog)
#include "tst_SensingOptionDialog.moc"
