#include "UsbLoggerCases.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <vector>

namespace {

const QLatin1String usbClass("{A5DCBF10-6530-11D2-901F-00C04FB951ED}");
const QLatin1String busReportedKey("{540B947E-8B40-45BC-A8A2-6A0B894CBDA2}\\\\0004");
// A device property keeps its type in the lower half of the registry's.
constexpr std::uint32_t devicePropertyTypes = 0xffff0000;

QByteArray value(const QByteArray &name, const RawProperty &property)
{
    const QByteArray bytes(reinterpret_cast<const char *>(property.bytes.data()),
                           static_cast<int>(property.bytes.size()));
    return name + "=hex(" + QByteArray::number(property.type, 16) + "):" + bytes.toHex(',') + '\n';
}

QByteArray value(const QByteArray &name, const std::optional<RawProperty> &property)
{
    return property ? value(name, *property) : QByteArray();
}

/// What Windows has in its registry of a present USB device.
QByteArray registryOf(const UsbDeviceCase &device, int number)
{
    const QByteArray instance = "FIXTURE\\\\" + QByteArray::number(number).rightJustified(4, '0');
    const QByteArray enumKey = "[System\\\\CurrentControlSet\\\\Enum\\\\USB\\\\" + instance;
    const QByteArray interfaceKey = "[System\\\\CurrentControlSet\\\\Control\\\\DeviceClasses\\\\" +
                                    QByteArray(usbClass.latin1()) + "\\\\##?#USB#" +
                                    QByteArray(instance).replace("\\\\", "#") + '#' + usbClass.latin1();
    QByteArray text = enumKey + "]\n\"ClassGUID\"=\"{4D36E978-E325-11CE-BFC1-08002BE10318}\"\n" +
                      value("\"HardwareID\"", device.hardwareIds) + value("\"FriendlyName\"", device.friendlyName) +
                      value("\"LocationInformation\"", device.location) + '\n';
    if (device.busReported) {
        const RawProperty &property = *device.busReported;
        text += enumKey + "\\\\Properties\\\\" + busReportedKey.latin1() + "]\n" +
                value("@", RawProperty{property.type | devicePropertyTypes, property.bytes}) + '\n';
    }
    return text + interfaceKey + "]\n\"DeviceInstance\"=\"USB\\\\" + instance + "\"\n\n" + //
           interfaceKey + "\\\\#\\\\Control]\n\"Linked\"=dword:00000001\n\n";
}

} // namespace

/// The program that lists loggers on Windows, compiled for Windows and run by Wine on the registry of each case.
class tst_UsbLoggersOfWindows : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();
    void findsTheLoggersOfTheTable_data();
    void findsTheLoggersOfTheTable();
    void showsItsVersion();

private:
    /// Lays out the least that Wine needs to run a console program: without copies of its libraries it takes its own,
    /// and there is no set-up to wait for.
    void layOut(const QDir &prefix, const QList<UsbDeviceCase> &devices);
    QByteArray run(const QString &prefix, const QString &program, const QStringList &arguments);

    // One for each case, as Wine's server writes its registry back when it ends.
    std::vector<std::unique_ptr<QTemporaryDir>> m_prefixes;
    int m_exitCode = -1;
};

void tst_UsbLoggersOfWindows::cleanupTestCase()
{
    // A server ends by itself a second after its last program; one that did not is ended, and with it what runs there.
    for (const auto &prefix : m_prefixes)
        run(prefix->path(), QStringLiteral(WINESERVER), {QStringLiteral("-k")});
}

void tst_UsbLoggersOfWindows::layOut(const QDir &prefix, const QList<UsbDeviceCase> &devices)
{
    QVERIFY(prefix.mkpath(QStringLiteral("drive_c/windows/system32")));
    QVERIFY(prefix.mkpath(QStringLiteral("dosdevices")));
    QVERIFY(QFile::link(QStringLiteral("../drive_c"), prefix.filePath(QStringLiteral("dosdevices/c:"))));
    QVERIFY(QFile::link(QStringLiteral("/"), prefix.filePath(QStringLiteral("dosdevices/z:"))));

    QFile timestamp(prefix.filePath(QStringLiteral(".update-timestamp")));
    QVERIFY(timestamp.open(QIODevice::WriteOnly));
    QVERIFY(timestamp.write("disable\n") > 0);

    QFile registry(prefix.filePath(QStringLiteral("system.reg")));
    QVERIFY(registry.open(QIODevice::WriteOnly));
    QVERIFY(registry.write("WINE REGISTRY Version 2\n;; All keys relative to \\\\Machine\n\n#arch=win64\n\n") > 0);
    int number = 0;
    for (const UsbDeviceCase &device : devices)
        QVERIFY(registry.write(registryOf(device, ++number)) > 0);
}

QByteArray tst_UsbLoggersOfWindows::run(const QString &prefix, const QString &program, const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("WINEPREFIX"), prefix);
    // Its server leaves a folder there.
    environment.insert(QStringLiteral("TMPDIR"), prefix);
    environment.insert(QStringLiteral("WINESERVER"), QStringLiteral(WINESERVER));
    environment.insert(QStringLiteral("WINEARCH"), QStringLiteral("win64"));
    environment.insert(QStringLiteral("WINEBOOTSTRAPMODE"), QStringLiteral("1"));
    environment.insert(QStringLiteral("WINEDEBUG"), QStringLiteral("-all"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("LD_PRELOAD"));

    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    m_exitCode = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return process.readAllStandardOutput();
}

void tst_UsbLoggersOfWindows::findsTheLoggersOfTheTable_data()
{
    addUsbLoggerCaseRows(UsbSystem::Windows);
}

void tst_UsbLoggersOfWindows::findsTheLoggersOfTheTable()
{
    QFETCH(int, number);
    const UsbLoggerCase expected = usbLoggerCases(UsbSystem::Windows).at(number);
    m_prefixes.push_back(
        std::make_unique<QTemporaryDir>(QCoreApplication::applicationDirPath() + QLatin1String("/wine-XXXXXX")));
    const QString prefix = m_prefixes.back()->path();
    QVERIFY2(m_prefixes.back()->isValid(), qPrintable(m_prefixes.back()->errorString()));
    layOut(QDir(prefix), expected.devices);
    if (QTest::currentTestFailed())
        return;
    QString lines;
    for (const UsbLogger &logger : expected.found)
        lines += logger.serialNumber + '\t' + logger.portName + "\r\n";
    const QByteArray printed = run(prefix, QStringLiteral(WINE), {QStringLiteral(USB_LOGGERS_EXE)});
    QCOMPARE(QString::fromUtf8(printed), lines);
    QCOMPARE(m_exitCode, 0);
}

/// Windows shows it from the resource of the program's file.
void tst_UsbLoggersOfWindows::showsItsVersion()
{
    QFile program(QStringLiteral(USB_LOGGERS_EXE));
    QVERIFY(program.open(QIODevice::ReadOnly));
    const auto resourceText = [](const QString &text) {
        return QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * static_cast<int>(text.size() + 1));
    };
    const QByteArray bytes = program.readAll();
    QVERIFY(bytes.contains(resourceText(QStringLiteral("ProductVersion"))));
    QVERIFY(bytes.contains(resourceText(QStringLiteral(PROGRAM_VERSION))));
    QVERIFY(bytes.contains(resourceText(QStringLiteral("Sorvanto Lite"))));
}

QTEST_GUILESS_MAIN(tst_UsbLoggersOfWindows)
#include "tst_UsbLoggersOfWindows.moc"
