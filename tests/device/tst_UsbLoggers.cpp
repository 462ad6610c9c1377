#include "UsbLoggerCases.h"
#include "support/LogCapture.h"

#include <QTest>
#include <memory>

// The toolkit's keyword macro would rewrite a member name in the mock's headers.
#undef signals
#include <umockdev.h>

namespace {

/// A USB device with one serial port in the mocked system, as the kernel would list it.
struct PortFixture
{
    QByteArray usbName = "1-1";
    QByteArray vendorId = "04d8";
    QByteArray productId = "000a";
    QByteArray product = "ZP_SERIES__12345678"; ///< null: the device tells none
    QByteArray portName = "ttyACM0";            ///< empty: the device has no serial port
};

QList<UsbLogger> one(const QString &portName, const QString &serialNumber)
{
    return {UsbLogger{portName, serialNumber}};
}

} // namespace

/// Walks a mocked system tree with the real enumeration; runs with the mock's library loaded.
class tst_UsbLoggers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void findsTheLoggersOfTheTable_data();
    void findsTheLoggersOfTheTable();
    void orderIsThatOfTheSockets();
    void serialPortWithoutUsbIsSkipped();
    void loggerBehindAHub();
    void severalPortsOfOneLogger();
    void loggerWithoutAUsableKeyIsLeftOut();
    void pluggedAndUnpluggedWhileRunning();
    void replugUnderAnotherName();

private:
    /// The paths of the USB device, its interface and its port.
    QByteArrayList plug(const PortFixture &fixture, const QByteArray &parent = {});
    void unplug(const QByteArrayList &paths);
    QByteArray add(const char *subsystem, const QByteArray &name, const QByteArray &parent,
                   std::initializer_list<const char *> attributes, std::initializer_list<const char *> properties);

    struct Unref
    {
        void operator()(UMockdevTestbed *testbed) const { g_object_unref(testbed); }
    };
    std::unique_ptr<UMockdevTestbed, Unref> m_testbed;
};

void tst_UsbLoggers::initTestCase()
{
    QVERIFY2(qgetenv("LD_PRELOAD").contains("umockdev"), "run under umockdev-wrapper, or through CTest");
}

void tst_UsbLoggers::init()
{
    m_testbed.reset(umockdev_testbed_new());
}

void tst_UsbLoggers::cleanup()
{
    m_testbed.reset();
}

QByteArray tst_UsbLoggers::add(const char *subsystem, const QByteArray &name, const QByteArray &parent,
                               std::initializer_list<const char *> attributes,
                               std::initializer_list<const char *> properties)
{
    const auto listed = [](std::initializer_list<const char *> texts) {
        std::vector<gchar *> list;
        for (const char *text : texts)
            list.push_back(const_cast<gchar *>(text));
        list.push_back(nullptr);
        return list;
    };
    auto attributeList = listed(attributes);
    auto propertyList = listed(properties);
    const std::unique_ptr<gchar, decltype(&g_free)> path(
        umockdev_testbed_add_devicev(m_testbed.get(), subsystem, name.constData(),
                                     parent.isEmpty() ? nullptr : parent.constData(), attributeList.data(),
                                     propertyList.data()),
        &g_free);
    return path.get();
}

QByteArrayList tst_UsbLoggers::plug(const PortFixture &fixture, const QByteArray &parent)
{
    const QByteArray usb = add("usb", fixture.usbName, parent,
                               {"idVendor", fixture.vendorId.constData(), "idProduct", fixture.productId.constData()},
                               {"DEVTYPE", "usb_device"});
    if (!fixture.product.isNull())
        umockdev_testbed_set_attribute(m_testbed.get(), usb.constData(), "product", fixture.product.constData());
    const QByteArray interface = add("usb", fixture.usbName + ":1.0", usb, {"interface", "CDC Abstract Control Model"},
                                     {"DEVTYPE", "usb_interface"});
    if (fixture.portName.isEmpty())
        return {usb, interface};
    const QByteArray node = "/dev/" + fixture.portName;
    return {usb, interface, add("tty", fixture.portName, interface, {"dev", "166:0"}, {"DEVNAME", node.constData()})};
}

void tst_UsbLoggers::unplug(const QByteArrayList &paths)
{
    // Children first: the mock would leave their entries behind.
    for (auto path = paths.crbegin(); path != paths.crend(); ++path)
        umockdev_testbed_remove_device(m_testbed.get(), path->constData());
}

void tst_UsbLoggers::findsTheLoggersOfTheTable_data()
{
    addUsbLoggerCaseRows(UsbSystem::Linux);
}

void tst_UsbLoggers::findsTheLoggersOfTheTable()
{
    QFETCH(int, number);
    const UsbLoggerCase expected = usbLoggerCases(UsbSystem::Linux).at(number);
    int socket = 0;
    for (const UsbDeviceCase &device : expected.devices)
        plug({"1-" + QByteArray::number(++socket), device.vendorId, device.productId, device.product, device.ttyName});
    QCOMPARE(findUsbLoggers(), expected.found);
}

void tst_UsbLoggers::orderIsThatOfTheSockets()
{
    plug({"1-2", "04d8", "000a", "ZP_SERIES__2", "ttyACM0"});
    plug({"1-1", "04d8", "000a", "ZP_SERIES__1", "ttyACM1"});
    QCOMPARE(findUsbLoggers(), one("ttyACM1", "1") + one("ttyACM0", "2"));
}

void tst_UsbLoggers::serialPortWithoutUsbIsSkipped()
{
    add("tty", "ttyS0", {}, {"dev", "4:64"}, {"DEVNAME", "/dev/ttyS0"});
    plug({});
    QCOMPARE(findUsbLoggers(), one("ttyACM0", "12345678"));
}

void tst_UsbLoggers::loggerBehindAHub()
{
    const QByteArray hub =
        add("usb", "1-4", {}, {"idVendor", "04d8", "idProduct", "000a", "product", "Hub"}, {"DEVTYPE", "usb_device"});
    plug({"1-4.1", "04d8", "000a", "ZP_SERIES__41", "ttyACM0"}, hub);
    plug({"1-4.2", "0403", "6001", "ZP_SERIES__42", "ttyUSB0"}, hub);
    QCOMPARE(findUsbLoggers(), one("ttyACM0", "41"));
}

void tst_UsbLoggers::severalPortsOfOneLogger()
{
    const QByteArray usb = plug({}).first();
    const QByteArray second = add("usb", "1-1:1.2", usb, {}, {"DEVTYPE", "usb_interface"});
    add("tty", "ttyACM1", second, {"dev", "166:1"}, {"DEVNAME", "/dev/ttyACM1"});
    QCOMPARE(findUsbLoggers(), one("ttyACM0", "12345678") + one("ttyACM1", "12345678"));
}

void tst_UsbLoggers::loggerWithoutAUsableKeyIsLeftOut()
{
    LogCapture log;
    const QByteArrayList strange =
        plug({"1-1", "04d8", "000a", QByteArray("ZP_SERIES__\xEF\xBB\xBF") + "1", "ttyACM0"});
    plug({"1-2", "04d8", "000a", "ZP_SERIES__" + QByteArray(256, '2'), "ttyACM1"});
    plug({"1-3", "04d8", "000a", QByteArray("ZP_SERIES__K\xC3\xBC 'o'"), "ttyACM2"});
    const auto refusals = [&log](const QByteArray &port) {
        return log.count("[ERROR] findUsbLoggers : [" + port + "] : the serial number ");
    };
    for (int scan = 0; scan < 3; ++scan) {
        QCOMPARE(findUsbLoggers(), one("ttyACM2", QStringLiteral("K\u00FC 'o'")));
        QCOMPARE(refusals("ttyACM0"), 1);
        QCOMPARE(refusals("ttyACM1"), 1);
    }
    unplug(strange);
    QCOMPARE(findUsbLoggers().size(), 1);
    plug({"1-1", "04d8", "000a", QByteArray("ZP_SERIES__\xEF\xBB\xBF") + "1", "ttyACM0"});
    QCOMPARE(findUsbLoggers().size(), 1);
    QCOMPARE(refusals("ttyACM0"), 2);
    QCOMPARE(refusals("ttyACM1"), 1);
}

void tst_UsbLoggers::pluggedAndUnpluggedWhileRunning()
{
    const QByteArrayList first = plug({"1-1", "04d8", "000a", "ZP_SERIES__1", "ttyACM0"});
    const QByteArrayList second = plug({"1-2", "04d8", "000a", "ZP_SERIES__2", "ttyACM1"});
    QCOMPARE(findUsbLoggers().size(), 2);
    unplug(first);
    QCOMPARE(findUsbLoggers(), one("ttyACM1", "2"));
    unplug(second);
    QCOMPARE(findUsbLoggers(), QList<UsbLogger>());
    plug({"1-1", "04d8", "000a", "ZP_SERIES__1", "ttyACM0"});
    QCOMPARE(findUsbLoggers(), one("ttyACM0", "1"));
}

void tst_UsbLoggers::replugUnderAnotherName()
{
    const QByteArrayList paths = plug({"1-1", "04d8", "000a", "ZP_SERIES__1", "ttyACM0"});
    QCOMPARE(findUsbLoggers(), one("ttyACM0", "1"));
    unplug(paths);
    plug({"1-1", "04d8", "000a", "ZP_SERIES__1", "ttyACM5"});
    QCOMPARE(findUsbLoggers(), one("ttyACM5", "1"));
}

QTEST_GUILESS_MAIN(tst_UsbLoggers)
#include "tst_UsbLoggers.moc"
