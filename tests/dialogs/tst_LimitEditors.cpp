#include "DialogParts.h"
#include "Typing.h"
#include "dialogs/SensingOptionTelnetDialog.h"
#include "dialogs/SensingOptionUsbDialog.h"
#include "support/ScriptedLogger.h"

#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QWheelEvent>

/// The alarm limits of both option dialogs, filled in as people do it.
class tst_LimitEditors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void init();
    void cleanup();

    void limit_data();
    void limit();
    void everyLimitTakesBothMarks_data();
    void everyLimitTakesBothMarks();
    void limitIsShownWithAPoint();
    void enterDoesNotMendALimit();
    void leavingAHalfTypedLimitKeepsIt_data();
    void leavingAHalfTypedLimitKeepsIt();
    void hidingTheDialogKeepsWhatWasTyped();
    void stepsAfterTyping();
    void refusedLimitCanBeCorrected();
    void missingNameComesFirst();
};

namespace {

const char *const limitNames[]{"doubleSpinBox_min_ch1", "doubleSpinBox_max_ch1", "doubleSpinBox_min_ch2",
                               "doubleSpinBox_max_ch2"};
const char *const limitTitles[]{"alarm minimum of channel 1", "alarm maximum of channel 1",
                                "alarm minimum of channel 2", "alarm maximum of channel 2"};

QString refusalOf(int limit)
{
    return QStringLiteral("ERROR: The %1 is not valid.\nEnter a number from -10000000 to 10000000 with at most two "
                          "decimals, such as 21.75.")
        .arg(QLatin1String(limitTitles[limit]));
}

float limitOf(const AlarmRange &range, int limit)
{
    const std::array<float, 4> limits{range.min1, range.max1, range.min2, range.max2};
    return limits.at(static_cast<size_t>(limit));
}

/// One notch away from the user.
void turnWheel(QWidget *field)
{
    const QPointF at(field->rect().center());
    QWheelEvent event(at, field->mapToGlobal(at.toPoint()), {}, QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(field, &event);
}

/// A connected device with the limits 1 to 4, and its dialog.
struct Opened
{
    ScriptedLogger logger;
    ConfiguredDevice device;
    QWidget window;
    QPointer<SensingOptionDialog> dialog;

    explicit Opened(int kind) : device("A1B2C3D4E5F6", kind)
    {
        logger.setReply("OK\r\n");
        device.setDeviceInfo("Cellar", "Air", "Damp", logger.address(), logger.port());
        device.setAlarmRange(1, 2, 3, 4);
        device.deviceConnected();
        if (kind == UsbInterface)
            dialog = new SensingOptionUsbDialog(&device, &window);
        else
            dialog = new SensingOptionTelnetDialog(&device, &window);
        dialog->show();
    }

    bool isActive() { return QTest::qWaitForWindowActive(dialog); }
    QDoubleSpinBox &limit(int number) { return part<QDoubleSpinBox>(dialog, limitNames[number]); }
    QLineEdit &name() { return part<QLineEdit>(dialog, "lineEdit_devicename"); }
    void confirm() { QTest::mouseClick(&part<QPushButton>(dialog, "pushButton_confirm"), Qt::LeftButton); }
    /// A network logger has been asked to accept it.
    AlarmRange rangeHandedOver()
    {
        return device.interfaceKind() == UsbInterface ? device.alarmRange() : device.pendingAlarmRange();
    }
    bool isUntouched() { return device.alarmRange() == AlarmRange{1, 2, 3, 4} && device.exchangeNumber() == 0; }
};

void addKinds()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("USB") << int(UsbInterface);
    QTest::newRow("network") << int(NetworkInterface);
}

} // namespace

void tst_LimitEditors::initTestCase_data()
{
    addLocales();
}

void tst_LimitEditors::init()
{
    QFETCH_GLOBAL(QLocale, locale);
    QLocale::setDefault(locale);
}

void tst_LimitEditors::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void tst_LimitEditors::limit_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("pasted");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value"); // not a number: to be refused

    const QList<QPair<QString, double>> texts{
        {"21,75", 21.75},
        {"21.75", 21.75},
        {"-1234,5", -1234.5},
        {QStringLiteral("\u22124.5"), -4.5},
        {"+8", 8},
        {"21,", 21},
        {",5", 0.5},
        {" 21,75 ", 21.75},
        {QStringLiteral("\u00A021,75\u202F"), 21.75},
        {"007,50", 7.5},
        {"-0,0", 0},
        {"-10000000", -10000000},
        {"10000000,00", 10000000},
        {"", qQNaN()},
        {"   ", qQNaN()},
        {"-", qQNaN()},
        {",", qQNaN()},
        {"-.", qQNaN()},
        {"1.234,56", qQNaN()},
        {"1,234.56", qQNaN()},
        {"1,234", qQNaN()},
        {"1.234", qQNaN()},
        {"1 234,5", qQNaN()},
        {QStringLiteral("1\u202F234,5"), qQNaN()},
        {QStringLiteral("1\u00A0234,5"), qQNaN()},
        {"1'234.5", qQNaN()},
        {"21.7.5", qQNaN()},
        {"21,,75", qQNaN()},
        {"21.750", qQNaN()},
        {"1e3", qQNaN()},
        {"0x10", qQNaN()},
        {"nan", qQNaN()},
        {"inf", qQNaN()},
        {"--5", qQNaN()},
        {"5-", qQNaN()},
        {"21,75 C", qQNaN()},
        {QStringLiteral("\uFF12\uFF11\uFF0E\uFF17"), qQNaN()},
        {QStringLiteral("\u0662\u0661\u066B\u0667"), qQNaN()},
        {"10000000,01", qQNaN()},
        {"-10000001", qQNaN()},
        {QString(400, QLatin1Char('9')), qQNaN()},
    };
    int number = 0;
    int kind = UsbInterface;
    for (const auto &[text, value] : texts) {
        for (const bool pasted : {false, true}) {
            const QByteArray tag = (pasted ? "pasted " : "typed ") + text.left(20).toUtf8();
            QTest::newRow(tag) << kind << number++ % 4 << pasted << text << value;
            kind = kind == UsbInterface ? NetworkInterface : UsbInterface;
        }
        kind = kind == UsbInterface ? NetworkInterface : UsbInterface;
    }
}

void tst_LimitEditors::limit()
{
    QFETCH(int, kind);
    QFETCH(int, number);
    QFETCH(bool, pasted);
    QFETCH(QString, text);
    QFETCH(double, value);
    Opened opened(kind);
    QVERIFY(opened.isActive());
    QSignalSpy confirmed(opened.dialog, &SensingOptionDialog::sensingConfirm);
    opened.name().setText("Attic");
    enter(&opened.limit(number), text, pasted);
    opened.confirm();
    if (!qIsNaN(value)) {
        QCOMPARE(messagesOf(opened.dialog), QStringList());
        QCOMPARE(limitOf(opened.rangeHandedOver(), number), float(value));
        QCOMPARE(opened.device.deviceName(), QString("Attic"));
        return;
    }
    QCOMPARE(messagesOf(opened.dialog), QStringList(refusalOf(number)));
    QVERIFY(opened.dialog->isVisible());
    QVERIFY(opened.isUntouched());
    QCOMPARE(confirmed.count(), 0);
    QCOMPARE(opened.device.deviceName(), QString("Cellar"));
    QCOMPARE(opened.limit(number).text(), QString(text).replace(',', '.'));
    QCOMPARE(opened.dialog->focusWidget(), &opened.limit(number));
}

void tst_LimitEditors::everyLimitTakesBothMarks_data()
{
    addKinds();
}

void tst_LimitEditors::everyLimitTakesBothMarks()
{
    QFETCH(int, kind);
    for (int number = 0; number < 4; ++number) {
        for (const char *text : {"-21,75", "-21.75"}) {
            Opened opened(kind);
            type(&opened.limit(number), text);
            QCOMPARE(opened.limit(number).value(), -21.75);
            opened.confirm();
            QCOMPARE(limitOf(opened.rangeHandedOver(), number), -21.75F);
        }
    }
}

void tst_LimitEditors::limitIsShownWithAPoint()
{
    Opened opened(UsbInterface);
    QVERIFY(opened.isActive());
    type(&opened.limit(0), "-1234,5");
    QCOMPARE(opened.limit(0).text(), QString("-1234.5"));
    QTest::keyClick(&opened.limit(0), Qt::Key_Tab);
    QCOMPARE(opened.limit(0).text(), QString("-1234.50"));
}

void tst_LimitEditors::enterDoesNotMendALimit()
{
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        Opened opened(UsbInterface);
        QVERIFY(opened.isActive());
        type(&opened.limit(1), "21.7.5");
        QTest::keyClick(&opened.limit(1), key);
        QCOMPARE(messagesOf(opened.dialog), QStringList(refusalOf(1)));
        QCOMPARE(opened.limit(1).text(), QString("21.7.5"));
        QVERIFY(opened.isUntouched());
    }
    Opened opened(UsbInterface);
    QVERIFY(opened.isActive());
    type(&opened.limit(1), "21,75");
    QTest::keyClick(&opened.limit(1), Qt::Key_Return);
    QCOMPARE(opened.device.alarmRange().max1, 21.75F);
}

void tst_LimitEditors::leavingAHalfTypedLimitKeepsIt_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("left");
    QTest::newRow("sign") << "-"
                          << "-";
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("no number") << "21.7.5"
                               << "21.7.5";
    QTest::newRow("beyond") << "123456789"
                            << "123456789";
    QTest::newRow("mark") << "21,"
                          << "21.00";
}

void tst_LimitEditors::leavingAHalfTypedLimitKeepsIt()
{
    QFETCH(QString, typed);
    QFETCH(QString, left);
    Opened opened(UsbInterface);
    QVERIFY(opened.isActive());
    type(&opened.limit(2), typed);
    QTest::keyClick(&opened.limit(2), Qt::Key_Tab);
    QCOMPARE(opened.dialog->focusWidget(), &opened.limit(3));
    QCOMPARE(opened.limit(2).text(), left);
    QTest::keyClick(&opened.limit(3), Qt::Key_Tab, Qt::ShiftModifier);
    QCOMPARE(opened.limit(2).text(), left);
    opened.name().setFocus();
    QTest::keyClick(&opened.name(), Qt::Key_Return);
    QCOMPARE(messagesOf(opened.dialog), left == "21.00" ? QStringList() : QStringList(refusalOf(2)));
}

void tst_LimitEditors::hidingTheDialogKeepsWhatWasTyped()
{
    Opened opened(UsbInterface);
    QVERIFY(opened.isActive());
    type(&opened.limit(0), "21.7.5");
    opened.dialog->hide(); // as does an icon in the task bar
    opened.dialog->show();
    QCOMPARE(opened.limit(0).text(), QString("21.7.5"));
    opened.confirm();
    QCOMPARE(messagesOf(opened.dialog), QStringList(refusalOf(0)));
}

void tst_LimitEditors::stepsAfterTyping()
{
    Opened opened(UsbInterface);
    QVERIFY(opened.isActive());
    QDoubleSpinBox &limit = opened.limit(0);
    type(&limit, "21,75");
    QTest::keyClick(&limit, Qt::Key_Up);
    QCOMPARE(limit.text(), QString("22.75"));
    turnWheel(&limit);
    QCOMPARE(limit.text(), QString("23.75"));
    type(&limit, "21.7.5");
    QTest::keyClick(&limit, Qt::Key_Up);
    QTest::keyClick(&limit, Qt::Key_PageDown);
    turnWheel(&limit);
    QCOMPARE(limit.text(), QString("21.7.5"));
    opened.confirm();
    QCOMPARE(messagesOf(opened.dialog), QStringList(refusalOf(0)));
}

void tst_LimitEditors::refusedLimitCanBeCorrected()
{
    Opened opened(NetworkInterface);
    QVERIFY(opened.isActive());
    type(&opened.limit(1), "21,75 C");
    opened.confirm();
    auto *message = opened.dialog->findChild<MessageDialog *>();
    QVERIFY(message);
    message->close();
    QTRY_COMPARE(QApplication::focusWidget(), &opened.limit(1));
    for (const char character : {'8', ',', '5'}) // over what is selected
        QTest::keyClick(QApplication::focusWidget(), character);
    opened.confirm();
    QCOMPARE(limitOf(opened.rangeHandedOver(), 1), 8.5F);
    QTRY_VERIFY(!opened.dialog);
    QCOMPARE(opened.logger.commands().value(1), QByteArray("ATBMAX1 8.50"));
}

void tst_LimitEditors::missingNameComesFirst()
{
    Opened opened(NetworkInterface);
    opened.name().clear();
    type(&opened.limit(0), "-");
    opened.confirm();
    QCOMPARE(messagesOf(opened.dialog), QStringList("INFORMATION: Enter the Device Name."));
}

QTEST_MAIN(tst_LimitEditors)
#include "tst_LimitEditors.moc"
