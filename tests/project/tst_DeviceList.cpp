#include "project/DeviceList.h"

#include "json/QJsonDocument.h"
#include "json/QJsonValueRef.h"
#include "json/Reader.h"

#include <QTest>
#include <cmath>
#include <limits>

class tst_DeviceList : public QObject
{
    Q_OBJECT

private slots:
    void writesEveryMember();
    void usbDeviceIsSerial();
    void anyOtherKindIsTelnet();
    void writesLimits_data();
    void writesLimits();
    void survivesARoundTrip_data();
    void survivesARoundTrip();
    void keepsTheOrder();
    void readsUnits_data();
    void readsUnits();
    void readsTypes_data();
    void readsTypes();
    void readsPorts_data();
    void readsPorts();
    void readsLimits_data();
    void readsLimits();
    void readsDashboardNumbers_data();
    void readsDashboardNumbers();
    void skipsElementsWithoutType_data();
    void skipsElementsWithoutType();
    void missingMembersGiveDefaults();
    void membersOfTheWrongKindGiveDefaults();
    void documentsWithoutDevices_data();
    void documentsWithoutDevices();
    void unreadableTexts_data();
    void unreadableTexts();
    void refusesWhatCannotBeAKey_data();
    void refusesWhatCannotBeAKey();
    void whatIsRefusedIsNotLost();
    void tenThousandDevices();
};

namespace {

DeviceEntry sample()
{
    DeviceEntry entry;
    entry.name = QStringLiteral("K\u00FChlraum \u00B0C \u2013 1");
    entry.ch1Name = QStringLiteral("air");
    entry.ch2Name = QStringLiteral("humidity");
    entry.serialNumber = QStringLiteral("0008DC5A11F0");
    entry.interfaceKind = NetworkInterface;
    entry.address = QStringLiteral("192.168.0.20");
    entry.port = 4000;
    entry.ch1Unit = 1;
    entry.ch2Unit = 4;
    entry.range = {-10.0F, 30.5F, 0.25F, 100.0F};
    entry.ch1CustomUnit = QString();
    entry.ch2CustomUnit = QStringLiteral("ppm");
    entry.buzzerAlarm = QStringLiteral("ON");
    entry.dashboardNumber = 3;
    return entry;
}

/// The one device of a list whose object has these members.
std::optional<DeviceEntry> deviceOf(const QByteArray &members)
{
    const auto devices = decodeDeviceList("{\"devices\": [{" + members + "}]}");
    if (!devices || devices->size() != 1)
        return std::nullopt;
    return devices->first();
}

json::QJsonObject elementOf(const QByteArray &list, int index)
{
    return json::QJsonDocument(json::parse(list)).object()[QStringLiteral("devices")].toArray().at(index).toObject();
}

} // namespace

void tst_DeviceList::writesEveryMember()
{
    const QString expected = QStringLiteral("{\"devices\": [{\"Ch1Name\": \"air\",\"Ch2Name\": \"humidity\","
                                            "\"DashboardNumber\": 3,\"DeviceInterface\": \"192.168.0.20\","
                                            "\"DeviceName\": \"K\u00FChlraum \u00B0C \u2013 1\","
                                            "\"DeviceNumber\": \"0008DC5A11F0\",\"DevicePort\": \"4000\","
                                            "\"DeviceType\": \"TELNET\",\"buzzerAlarm\": \"ON\","
                                            "\"ch1_custom\": \"\",\"ch1_max\": \"30.50\",\"ch1_min\": \"-10.00\","
                                            "\"ch1_unit\": \"1\",\"ch2_custom\": \"ppm\",\"ch2_max\": \"100.00\","
                                            "\"ch2_min\": \"0.25\",\"ch2_unit\": \"4\"}]}");
    QCOMPARE(QString::fromUtf8(encodeDeviceList({sample()})), expected);
    QCOMPARE(encodeDeviceList({}), QByteArray("{\"devices\": []}"));
}

void tst_DeviceList::usbDeviceIsSerial()
{
    DeviceEntry entry = sample();
    entry.interfaceKind = UsbInterface;
    QVERIFY(encodeDeviceList({entry}).contains("\"DeviceType\": \"SERIAL\""));
}

void tst_DeviceList::anyOtherKindIsTelnet()
{
    DeviceEntry entry = sample();
    entry.interfaceKind = NoInterface;
    QVERIFY(encodeDeviceList({entry}).contains("\"DeviceType\": \"TELNET\""));
}

void tst_DeviceList::writesLimits_data()
{
    QTest::addColumn<float>("limit");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("zero") << 0.0F << QByteArray("0.00");
    QTest::newRow("negative") << -10.0F << QByteArray("-10.00");
    QTest::newRow("rounded") << 21.456F << QByteArray("21.46");
    QTest::newRow("never an exponent") << 1e10F << QByteArray("10000000000.00");
    QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << QByteArray("0.00");
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << QByteArray("0.00");
}

void tst_DeviceList::writesLimits()
{
    QFETCH(float, limit);
    QFETCH(QByteArray, text);
    DeviceEntry entry = sample();
    entry.range = {limit, limit, limit, limit};
    const QByteArray written = encodeDeviceList({entry});
    for (const char *member : {"ch1_min", "ch1_max", "ch2_min", "ch2_max"}) {
        const QByteArray expected = QByteArray("\"") + member + "\": \"" + text + "\"";
        QVERIFY2(written.contains(expected), written.constData());
    }
}

void tst_DeviceList::survivesARoundTrip_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "hall";
    QTest::newRow("umlaut, degree, dash") << QStringLiteral("K\u00FChlraum \u00B0C \u2013 1");
    QTest::newRow("backslash") << "C:\\logs\\new";
    QTest::newRow("only a backslash") << "\\";
    QTest::newRow("quotes") << "the \"cold\" 'room'";
    QTest::newRow("control characters") << QStringLiteral("a\tb\nc\rd\x01");
    QTest::newRow("looks like an escape") << "\\u0041 \\n";
    QTest::newRow("other script") << QStringLiteral("\u51B7\u85CF\u5EAB") + QString::fromUcs4(U"\U0001F321");
    QTest::newRow("markup") << "<b>&amp;</b>";
    QTest::newRow("JSON") << "{\"devices\": []}";
}

void tst_DeviceList::survivesARoundTrip()
{
    QFETCH(QString, text);
    DeviceEntry entry = sample();
    for (QString *field : {&entry.name, &entry.ch1Name, &entry.ch2Name, &entry.address, &entry.ch1CustomUnit,
                           &entry.ch2CustomUnit, &entry.buzzerAlarm})
        *field = text;
    const auto read = decodeDeviceList(encodeDeviceList({sample(), entry}));
    QVERIFY(read);
    QCOMPARE(read->size(), 2);
    QVERIFY(read->at(0) == sample());
    QCOMPARE(read->at(1).name, text);
    QVERIFY(read->at(1) == entry);
}

void tst_DeviceList::keepsTheOrder()
{
    QList<DeviceEntry> devices;
    for (const char *number : {"9", "1", "5"}) {
        devices << sample();
        devices.last().serialNumber = QString::fromLatin1(number);
    }
    const auto read = decodeDeviceList(encodeDeviceList(devices));
    QVERIFY(read);
    QVERIFY(*read == devices);
}

void tst_DeviceList::readsUnits_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("unit");
    for (int code = 0; code <= 4; ++code)
        QTest::addRow("%d", code) << '"' + QByteArray::number(code) + '"' << code;
    QTest::newRow("7") << QByteArray("\"7\"") << 0;
    QTest::newRow("5") << QByteArray("\"5\"") << 0;
    QTest::newRow("negative") << QByteArray("\"-1\"") << 0;
    QTest::newRow("no number") << QByteArray("\"warm\"") << 0;
    QTest::newRow("empty") << QByteArray("\"\"") << 0;
    QTest::newRow("beyond an int") << QByteArray("\"4294967297\"") << 0;
}

void tst_DeviceList::readsUnits()
{
    QFETCH(QByteArray, json);
    QFETCH(int, unit);
    const auto entry = deviceOf("\"DeviceType\":\"TELNET\",\"ch1_unit\":" + json + ",\"ch2_unit\":" + json);
    QVERIFY(entry);
    QCOMPARE(entry->ch1Unit, unit);
    QCOMPARE(entry->ch2Unit, unit);
}

void tst_DeviceList::readsTypes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("kind");
    QTest::newRow("SERIAL") << QByteArray("\"SERIAL\"") << int(UsbInterface);
    QTest::newRow("TELNET") << QByteArray("\"TELNET\"") << int(NetworkInterface);
    QTest::newRow("lower case") << QByteArray("\"serial\"") << int(NetworkInterface);
    QTest::newRow("blank behind") << QByteArray("\"SERIAL \"") << int(NetworkInterface);
    QTest::newRow("anything") << QByteArray("\"RADIO\"") << int(NetworkInterface);
    QTest::newRow("empty") << QByteArray("\"\"") << int(NetworkInterface);
    QTest::newRow("number") << QByteArray("1") << int(NetworkInterface);
}

void tst_DeviceList::readsTypes()
{
    QFETCH(QByteArray, json);
    QFETCH(int, kind);
    const auto entry = deviceOf("\"DeviceType\":" + json);
    QVERIFY(entry);
    QCOMPARE(entry->interfaceKind, kind);
}

void tst_DeviceList::readsPorts_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("port");
    QTest::newRow("smallest") << QByteArray("\"1\"") << 1;
    QTest::newRow("largest") << QByteArray("\"65535\"") << 65535;
    QTest::newRow("too large") << QByteArray("\"99999\"") << 23;
    QTest::newRow("negative") << QByteArray("\"-23\"") << 23;
    QTest::newRow("hexadecimal") << QByteArray("\"0x17\"") << 23;
    QTest::newRow("text") << QByteArray("\"telnet\"") << 23;
    QTest::newRow("empty") << QByteArray("\"\"") << 23;
    QTest::newRow("number") << QByteArray("4000") << 23;
}

void tst_DeviceList::readsPorts()
{
    QFETCH(QByteArray, json);
    QFETCH(int, port);
    const auto entry = deviceOf("\"DeviceType\":\"TELNET\",\"DevicePort\":" + json);
    QVERIFY(entry);
    QCOMPARE(int(entry->port), port);
}

void tst_DeviceList::readsLimits_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<float>("limit");
    QTest::newRow("fixed") << QByteArray("\"-10.25\"") << -10.25F;
    QTest::newRow("whole") << QByteArray("\"30\"") << 30.0F;
    QTest::newRow("exponent") << QByteArray("\"1e2\"") << 100.0F;
    QTest::newRow("nan") << QByteArray("\"nan\"") << 0.0F;
    QTest::newRow("inf") << QByteArray("\"inf\"") << 0.0F;
    QTest::newRow("-inf") << QByteArray("\"-inf\"") << 0.0F;
    QTest::newRow("beyond a float") << QByteArray("\"1e39\"") << 0.0F;
    QTest::newRow("beyond a double") << QByteArray("\"-1e400\"") << 0.0F;
    QTest::newRow("decimal comma") << QByteArray("\"1,5\"") << 0.0F;
    QTest::newRow("text") << QByteArray("\"warm\"") << 0.0F;
    QTest::newRow("number") << QByteArray("12") << 0.0F;
}

void tst_DeviceList::readsLimits()
{
    QFETCH(QByteArray, json);
    QFETCH(float, limit);
    const auto entry = deviceOf("\"DeviceType\":\"TELNET\",\"ch1_min\":" + json + ",\"ch1_max\":" + json +
                                ",\"ch2_min\":" + json + ",\"ch2_max\":" + json);
    QVERIFY(entry);
    QVERIFY(entry->range == (AlarmRange{limit, limit, limit, limit}));
}

void tst_DeviceList::readsDashboardNumbers_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("number");
    QTest::newRow("number") << QByteArray("2") << 2;
    QTest::newRow("fraction") << QByteArray("2.0") << 2;
    QTest::newRow("text") << QByteArray("\"2\"") << 0;
    QTest::newRow("beyond an int") << QByteArray("1e99") << 0;
    QTest::newRow("beyond a double") << QByteArray("1e999") << 0;
    QTest::newRow("null") << QByteArray("null") << 0;
    QTest::newRow("array") << QByteArray("[1]") << 0;
}

void tst_DeviceList::readsDashboardNumbers()
{
    QFETCH(QByteArray, json);
    QFETCH(int, number);
    const auto entry = deviceOf("\"DeviceType\":\"TELNET\",\"DashboardNumber\":" + json);
    QVERIFY(entry);
    QCOMPARE(entry->dashboardNumber, number);
}

void tst_DeviceList::skipsElementsWithoutType_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("no type") << QByteArray("{\"DeviceNumber\": \"1\"}");
    QTest::newRow("null type") << QByteArray("{\"DeviceType\": null,\"DeviceNumber\": \"1\"}");
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("text") << QByteArray("\"SERIAL\"");
    QTest::newRow("number") << QByteArray("1");
    QTest::newRow("array") << QByteArray("[{\"DeviceType\": \"SERIAL\"}]");
}

void tst_DeviceList::skipsElementsWithoutType()
{
    QFETCH(QByteArray, element);
    const auto devices = decodeDeviceList("{\"devices\": [" + element +
                                          ",{\"DeviceType\": \"SERIAL\",\"DeviceNumber\": \"2\"}," + element + "]}");
    QVERIFY(devices);
    QCOMPARE(devices->size(), 1);
    QCOMPARE(devices->first().serialNumber, QStringLiteral("2"));
}

void tst_DeviceList::missingMembersGiveDefaults()
{
    const auto entry = deviceOf("\"DeviceType\": \"TELNET\"");
    QVERIFY(entry);
    QVERIFY(*entry == DeviceEntry());
    QCOMPARE(int(entry->port), 23);
    QCOMPARE(entry->buzzerAlarm, QStringLiteral("OFF"));
}

void tst_DeviceList::membersOfTheWrongKindGiveDefaults()
{
    QByteArray members = "\"DeviceType\": {}";
    for (const char *name :
         {"DeviceName", "Ch1Name", "Ch2Name", "DeviceNumber", "DeviceInterface", "DevicePort", "ch1_unit", "ch1_min",
          "ch1_max", "ch1_custom", "ch2_unit", "ch2_min", "ch2_max", "ch2_custom", "buzzerAlarm"})
        members += QByteArray(",\"") + name + "\": [1,{\"a\": true}]";
    const auto entry = deviceOf(members);
    QVERIFY(entry);
    QVERIFY(*entry == DeviceEntry());
}

void tst_DeviceList::documentsWithoutDevices_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("no devices") << QByteArray("{}");
    QTest::newRow("other member") << QByteArray("{\"Devices\": [{\"DeviceType\": \"SERIAL\"}]}");
    QTest::newRow("empty list") << QByteArray("{\"devices\": []}");
    QTest::newRow("null") << QByteArray("{\"devices\": null}");
    QTest::newRow("object") << QByteArray("{\"devices\": {\"DeviceType\": \"SERIAL\"}}");
    QTest::newRow("text") << QByteArray("{\"devices\": \"none\"}");
    QTest::newRow("array at the top") << QByteArray("[{\"DeviceType\": \"SERIAL\"}]");
}

void tst_DeviceList::documentsWithoutDevices()
{
    QFETCH(QByteArray, text);
    const auto devices = decodeDeviceList(text);
    QVERIFY(devices);
    QVERIFY(devices->isEmpty());
}

void tst_DeviceList::unreadableTexts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("blank") << QByteArray(" ");
    QTest::newRow("cut") << encodeDeviceList({sample()}).chopped(1);
    QTest::newRow("word") << QByteArray("devices");
    QTest::newRow("text behind") << QByteArray("{\"devices\": []} and more");
    QTest::newRow("too deep") << "{\"devices\": " + QByteArray(2000, '[') + QByteArray(2000, ']') + "}";
    QTest::newRow("zero bytes") << QByteArray(100, '\0');
}

void tst_DeviceList::unreadableTexts()
{
    QFETCH(QByteArray, text);
    QVERIFY(!decodeDeviceList(text));
}

void tst_DeviceList::refusesWhatCannotBeAKey_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<QString>("reason");
    QTest::newRow("control character") << QByteArray("\"00\\t8\"") << "contains a control character";
    QTest::newRow("zeros") << "\"" + QByteArray("\\u0000").repeated(200) + "\""
                           << "contains a control character";
    QTest::newRow("byte-order mark") << QByteArray("\"\\uFEFF0008DC5A11F0\"") << "contains a byte-order mark";
    QTest::newRow("long") << '"' + QByteArray(256, '0') + '"' << "is longer than 255 characters";
}

void tst_DeviceList::refusesWhatCannotBeAKey()
{
    QFETCH(QByteArray, number);
    QFETCH(QString, reason);
    const QByteArray text = "{\"devices\": [{\"DeviceType\": \"TELNET\",\"DeviceName\": \"<b>Oven</b>\","
                            "\"DeviceNumber\": " +
                            number + "},{\"DeviceType\": \"TELNET\",\"DeviceNumber\": \"7\"}]}";
    const auto devices = decodeDeviceList(text);
    QVERIFY(devices);
    QCOMPARE(devices->size(), 1);
    QCOMPARE(devices->first().serialNumber, QStringLiteral("7"));
    QCOMPARE(refusedDevices(text),
             QStringList{QStringLiteral("The device \"<b>Oven</b>\" is left out: its number %1.").arg(reason)});
}

/// Saved again and again with other devices, it stands in the file as it always did, unknown members included.
void tst_DeviceList::whatIsRefusedIsNotLost()
{
    const QByteArray refused =
        "{\"DeviceNumber\": \"\\u0000\\uFEFF7\",\"DeviceType\": \"SERIAL\",\"later\": [1,{\"x\": null}]}";
    QByteArray text = "{\"devices\": [" + refused + "]}";
    const json::QJsonObject before = elementOf(text, 0);
    for (int round = 0; round < 3; ++round) {
        text = encodeDeviceList({sample()}, text);
        QCOMPARE(decodeDeviceList(text)->size(), 1);
        QCOMPARE(refusedDevices(text).size(), 1);
        QVERIFY(elementOf(text, 1) == before);
    }
    QCOMPARE(refusedDevices(encodeDeviceList({sample()}, encodeDeviceList({sample()}))), QStringList());
}

void tst_DeviceList::tenThousandDevices()
{
    QList<DeviceEntry> devices;
    for (int i = 0; i < 10000; ++i) {
        devices << sample();
        devices.last().serialNumber = QString::number(i);
    }
    const auto read = decodeDeviceList(encodeDeviceList(devices));
    QVERIFY(read);
    QVERIFY(*read == devices);
}

QTEST_GUILESS_MAIN(tst_DeviceList)
#include "tst_DeviceList.moc"
