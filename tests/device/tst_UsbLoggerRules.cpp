#include "UsbLoggerCases.h"
#include "device/usb/UsbLoggerRules.h"

#include <QTest>

Q_DECLARE_METATYPE(RawProperty)
Q_DECLARE_METATYPE(PropertyValue)

namespace {

using Texts = std::vector<std::u16string>;

RawProperty raw(std::uint32_t type, const char *hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return {type, {bytes.begin(), bytes.end()}};
}

/// A device as a case of the table has it.
class FakeDevice : public UsbDeviceProperties
{
public:
    explicit FakeDevice(const UsbDeviceCase &device) : m_device(device) {}

    std::optional<RawProperty> registryProperty(RegistryProperty property) const override
    {
        switch (property) {
        case RegistryProperty::HardwareIds:
            return m_device.hardwareIds;
        case RegistryProperty::FriendlyName:
            return m_device.friendlyName;
        case RegistryProperty::LocationInformation:
            return m_device.location;
        }
        return std::nullopt;
    }

    std::optional<RawProperty> busReportedDescription() const override
    {
        ++m_questionsToTheBus;
        return m_device.busReported;
    }

    int questionsToTheBus() const { return m_questionsToTheBus; }

private:
    const UsbDeviceCase m_device;
    mutable int m_questionsToTheBus = 0;
};

} // namespace

/// The decoding of properties and the rules for loggers, which every system shares.
class tst_UsbLoggerRules : public QObject
{
    Q_OBJECT

private slots:
    void idsOfALogger_data();
    void idsOfALogger();
    void serialNumberOfADescription_data();
    void serialNumberOfADescription();
    void idsWithinAHardwareId_data();
    void idsWithinAHardwareId();
    void registryValues_data();
    void registryValues();
    void devicePropertyValues_data();
    void devicePropertyValues();
    void valuesAsTextAndAsList();
    void findsTheLoggersOfTheTable_data();
    void findsTheLoggersOfTheTable();
    void busIsAskedOnlyWhereTheLocationTellsNothing_data();
    void busIsAskedOnlyWhereTheLocationTellsNothing();
};

void tst_UsbLoggerRules::idsOfALogger_data()
{
    QTest::addColumn<QString>("vendor");
    QTest::addColumn<QString>("product");
    QTest::addColumn<bool>("logger");
    QTest::newRow("lower case") << "04d8"
                                << "000a" << true;
    QTest::newRow("upper case") << "04D8"
                                << "000A" << true;
    QTest::newRow("mixed case") << "04D8"
                                << "000a" << true;
    QTest::newRow("within longer text") << "x04d8"
                                        << "000ab" << true;
    QTest::newRow("another product") << "04d8"
                                     << "000b" << false;
    QTest::newRow("another vendor") << "04d9"
                                    << "000a" << false;
    QTest::newRow("no leading zeros") << "4d8"
                                      << "a" << false;
    QTest::newRow("nothing") << ""
                             << "" << false;
}

void tst_UsbLoggerRules::idsOfALogger()
{
    QFETCH(QString, vendor);
    QFETCH(QString, product);
    QTEST(isUsbLogger(vendor.toStdU16String(), product.toStdU16String()), "logger");
}

void tst_UsbLoggerRules::serialNumberOfADescription_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("serialNumber");
    QTest::newRow("marked") << "ZP_SERIES__12345678"
                            << "12345678";
    QTest::newRow("marker in the middle") << "AB ZP_SERIES__12"
                                          << "AB 12";
    QTest::newRow("marked twice") << "ZP_SERIES__12ZP_SERIES__34"
                                  << "1234";
    QTest::newRow("no marker") << "CDC device"
                               << "CDC device";
    QTest::newRow("marker in lower case") << "zp_series__12"
                                          << "zp_series__12";
    QTest::newRow("marker only") << "ZP_SERIES__"
                                 << "";
    QTest::newRow("zeros") << QStringLiteral("ZP_SERIES__1") + QChar(u'\0') + '2' + QChar(u'\0') << "12";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_UsbLoggerRules::serialNumberOfADescription()
{
    QFETCH(QString, description);
    QTEST(QString::fromStdU16String(serialNumberFromDescription(description.toStdU16String())), "serialNumber");
}

void tst_UsbLoggerRules::idsWithinAHardwareId_data()
{
    QTest::addColumn<QString>("hardwareId");
    QTest::addColumn<QString>("ids");
    QTest::newRow("upper case") << "USB\\VID_04D8&PID_000A&REV_0100"
                                << "04D8 000A";
    QTest::newRow("lower case") << "usb\\vid_04d8&pid_000a"
                                << "04D8 000A";
    QTest::newRow("whole words") << "VID_x_1&PID_y_2-3"
                                 << "X_1 Y_2";
    QTest::newRow("a second place, where the first is none") << "VID_1-VID_2&PID_3"
                                                             << "2 3";
    QTest::newRow("a marker within the vendor's word") << "VID_VID_1&PID_2"
                                                       << "VID_1 2";
    QTest::newRow("no vendor") << "VID_&PID_000A"
                               << " ";
    QTest::newRow("no product") << "VID_04D8&PID_"
                                << " ";
    QTest::newRow("something between") << "VID_04D8&REV_1&PID_000A"
                                       << " ";
    QTest::newRow("letters beyond ASCII end a word") << QString::fromUtf8("VID_04D8ä&PID_000A") << " ";
    QTest::newRow("cut short") << "VID_04D8&PI"
                               << " ";
    QTest::newRow("empty") << ""
                           << " ";
}

void tst_UsbLoggerRules::idsWithinAHardwareId()
{
    QFETCH(QString, hardwareId);
    const UsbIds ids = usbIdsOf(hardwareId.toStdU16String());
    QTEST(QString::fromStdU16String(ids.vendor + u' ' + ids.product), "ids");
}

void tst_UsbLoggerRules::registryValues_data()
{
    QTest::addColumn<RawProperty>("property");
    QTest::addColumn<PropertyValue>("value");
    QTest::newRow("text") << raw(1, "41004200 0000") << PropertyValue(u"AB");
    QTest::newRow("text, not terminated") << raw(1, "41004200") << PropertyValue(u"AB");
    QTest::newRow("text, terminated early") << raw(1, "4100 0000 4200 0000") << PropertyValue(u"A");
    QTest::newRow("text, odd length") << raw(1, "4100 42") << PropertyValue(u"A");
    QTest::newRow("text, a single byte") << raw(1, "41") << PropertyValue(u"");
    QTest::newRow("text, nothing") << raw(1, "") << PropertyValue(u"");
    QTest::newRow("text beyond ASCII") << raw(1, "fc00 2965 3dd8 00de") << PropertyValue(u"\u00fc\u6529\U0001f600");
    QTest::newRow("expandable text") << raw(2, "4100 0000 4200") << PropertyValue(u"A");
    QTest::newRow("untyped: the whole length") << raw(0, "4100 0000 4200") << PropertyValue(std::u16string(u"A\0B", 3));
    QTest::newRow("binary: the whole length") << raw(3, "4100 0000 42") << PropertyValue(std::u16string(u"A\0", 2));
    QTest::newRow("number") << raw(4, "78563412") << PropertyValue(0x12345678);
    QTest::newRow("negative number") << raw(4, "feffffff") << PropertyValue(-2);
    QTest::newRow("number, more bytes") << raw(4, "0100000099") << PropertyValue(1);
    QTest::newRow("number, cut short") << raw(4, "010000") << PropertyValue();
    QTest::newRow("big-endian number") << raw(5, "12345678") << PropertyValue(0x12345678);
    QTest::newRow("big-endian number, more bytes") << raw(5, "0000000199") << PropertyValue(1);
    QTest::newRow("big-endian number, cut short") << raw(5, "0001") << PropertyValue();
    QTest::newRow("list") << raw(7, "4100 0000 4200 4300 0000 0000") << PropertyValue(Texts{u"A", u"BC"});
    QTest::newRow("list, not terminated") << raw(7, "4100 0000 4200") << PropertyValue(Texts{u"A", u"B"});
    QTest::newRow("list, odd length") << raw(7, "4100 0000 4200 43") << PropertyValue(Texts{u"A", u"B"});
    QTest::newRow("list, ended by an empty item")
        << raw(7, "4100 0000 0000 4200 0000 0000") << PropertyValue(Texts{u"A"});
    QTest::newRow("list, nothing") << raw(7, "") << PropertyValue(Texts());
    QTest::newRow("64-bit number") << raw(11, "4100420043004400") << PropertyValue();
    QTest::newRow("a device property's type") << raw(18, "4100 0000") << PropertyValue();
}

void tst_UsbLoggerRules::registryValues()
{
    QFETCH(RawProperty, property);
    QFETCH(PropertyValue, value);
    QVERIFY(registryValue(property) == value);
}

void tst_UsbLoggerRules::devicePropertyValues_data()
{
    QTest::addColumn<RawProperty>("property");
    QTest::addColumn<PropertyValue>("value");
    QTest::newRow("text") << raw(18, "41004200 0000 4300") << PropertyValue(u"AB");
    QTest::newRow("text, not terminated, odd length") << raw(18, "4100 42") << PropertyValue(u"A");
    QTest::newRow("list") << raw(8210, "4100 0000 4200 0000 0000") << PropertyValue(Texts{u"A", u"B"});
    QTest::newRow("byte: the whole length") << raw(3, "4100 0000 4200") << PropertyValue(std::u16string(u"A\0B", 3));
    QTest::newRow("binary: the whole length") << raw(4099, "4100 0000") << PropertyValue(std::u16string(u"A\0", 2));
    QTest::newRow("signed number") << raw(4, "ffffffff") << PropertyValue(-1);
    QTest::newRow("unsigned number, more bytes") << raw(5, "0100000099") << PropertyValue(1);
    QTest::newRow("number, cut short") << raw(5, "0100") << PropertyValue();
    QTest::newRow("another type") << raw(17, "4100 0000") << PropertyValue();
    QTest::newRow("the registry's type of a text") << raw(1, "4100 0000") << PropertyValue();
}

void tst_UsbLoggerRules::devicePropertyValues()
{
    QFETCH(RawProperty, property);
    QFETCH(PropertyValue, value);
    QVERIFY(devicePropertyValue(property) == value);
}

void tst_UsbLoggerRules::valuesAsTextAndAsList()
{
    QVERIFY(textOf({}).empty());
    QVERIFY(textOf(-12) == u"-12");
    QVERIFY(textOf(u"A") == u"A");
    QVERIFY(textOf(Texts{u"A"}) == u"A");
    QVERIFY(textOf(Texts{u"A", u"B"}).empty());
    QVERIFY(textOf(Texts()).empty());

    QVERIFY(listOf({}).empty());
    QVERIFY(listOf(12).empty());
    QVERIFY(listOf(u"A") == Texts{u"A"});
    QVERIFY((listOf(Texts{u"A", u"B"}) == Texts{u"A", u"B"}));
}

void tst_UsbLoggerRules::findsTheLoggersOfTheTable_data()
{
    addUsbLoggerCaseRows(UsbSystem::Windows);
}

void tst_UsbLoggerRules::findsTheLoggersOfTheTable()
{
    QFETCH(int, number);
    const UsbLoggerCase expected = usbLoggerCases(UsbSystem::Windows).at(number);
    std::vector<FoundUsbLogger> found;
    for (const UsbDeviceCase &device : expected.devices) {
        if (const auto logger = usbLoggerOf(FakeDevice(device)))
            found.push_back(*logger);
    }
    QCOMPARE(usableUsbLoggers(found), expected.found);
}

void tst_UsbLoggerRules::busIsAskedOnlyWhereTheLocationTellsNothing_data()
{
    QTest::addColumn<QString>("location");
    QTest::addColumn<int>("questions");
    QTest::newRow("marked") << "ZP_SERIES__12345678" << 0;
    QTest::newRow("marker only") << "ZP_SERIES__" << 0;
    QTest::newRow("not marked") << "Port_#0001.Hub_#0003" << 1;
    QTest::newRow("empty") << "" << 1;
}

void tst_UsbLoggerRules::busIsAskedOnlyWhereTheLocationTellsNothing()
{
    QFETCH(QString, location);
    const auto registryText = [](const QString &text) {
        const auto *bytes = reinterpret_cast<const std::uint8_t *>(text.utf16());
        return RawProperty{1, {bytes, bytes + 2 * text.size()}};
    };
    UsbDeviceCase described;
    described.hardwareIds = registryText(QStringLiteral("USB\\VID_04D8&PID_000A"));
    described.friendlyName = registryText(QStringLiteral("Port (COM7)"));
    described.location = registryText(location);
    const FakeDevice device(described);
    usbLoggerOf(device);
    QTEST(device.questionsToTheBus(), "questions");
}

QTEST_GUILESS_MAIN(tst_UsbLoggerRules)
#include "tst_UsbLoggerRules.moc"
