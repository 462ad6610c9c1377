// Before the toolkit, whose keyword macros would rewrite names in it.
#include <umockdev.h>

#include "loggersim/UsbTree.h"

#include <QFile>
#include <dlfcn.h>

namespace loggersim {

namespace {

const QLatin1String preloadLibrary("libumockdev-preload.so.0");
constexpr int serialMajor = 166;

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// The way from within a folder of the tree to another place in it.
bool link(const QString &place, const QString &target)
{
    const QString folder = QFileInfo(place).path();
    return QDir().mkpath(folder) && QFile::link(QDir(folder).relativeFilePath(target), place);
}

void addTo(QProcessEnvironment &environment, const QString &name, const QString &value)
{
    const QString before = environment.value(name);
    environment.insert(name, before.isEmpty() ? value : value + QLatin1Char(':') + before);
}

QDir rootOf(UMockdevTestbed *testbed)
{
    const std::unique_ptr<gchar, decltype(&g_free)> root(umockdev_testbed_get_root_dir(testbed), &g_free);
    return QDir(QString::fromLocal8Bit(root.get()));
}

} // namespace

UsbTree::UsbTree() : m_testbed(umockdev_testbed_new()), m_root(rootOf(m_testbed.get()))
{
    for (const char *folder : {"dev", "sys/class/tty", "sys/bus/usb/devices", "sys/devices"})
        m_root.mkpath(QLatin1String(folder));
}

void UsbTree::Unref::operator()(UMockdevTestbed *testbed) const
{
    g_object_unref(testbed);
}

QString UsbTree::portName(int plug)
{
    return QStringLiteral("ttyACM%1").arg(plug);
}

QString UsbTree::usbDevice(int plug) const
{
    return path(QStringLiteral("sys/devices/pci0000:00/0000:00:14.0/usb1/1-%1").arg(plug + 1));
}

QString UsbTree::interfaceOf(int plug) const
{
    const QString usb = usbDevice(plug);
    return usb + QLatin1Char('/') + QFileInfo(usb).fileName() + QLatin1String(":1.0");
}

bool UsbTree::plugIn(int plug, const QString &product, const QString &terminal)
{
    // The entry under class/tty comes last: it is where a scan begins, so a scan finds the logger whole or not at all.
    return writeUsbDevice(plug, product) && writePort(plug, terminal);
}

bool UsbTree::writeUsbDevice(int plug, const QString &product) const
{
    const QString usb = usbDevice(plug);
    const QString interface = interfaceOf(plug);
    return QDir().mkpath(interface) && writeFile(usb + QLatin1String("/uevent"), "DEVTYPE=usb_device\n") &&
           writeFile(usb + QLatin1String("/idVendor"), "04d8\n") &&
           writeFile(usb + QLatin1String("/idProduct"), "000a\n") &&
           writeFile(usb + QLatin1String("/product"), product.toUtf8() + '\n') &&
           link(usb + QLatin1String("/subsystem"), path(QStringLiteral("sys/bus/usb"))) &&
           link(path(QLatin1String("sys/bus/usb/devices/") + QFileInfo(usb).fileName()), usb) &&
           writeFile(interface + QLatin1String("/uevent"), "DEVTYPE=usb_interface\n") &&
           link(interface + QLatin1String("/subsystem"), path(QStringLiteral("sys/bus/usb")));
}

bool UsbTree::writePort(int plug, const QString &terminal) const
{
    const QString name = portName(plug);
    const QString interface = interfaceOf(plug);
    const QString port = interface + QLatin1String("/tty/") + name;
    const QByteArray major = QByteArray::number(serialMajor);
    const QByteArray minor = QByteArray::number(plug);
    return QDir().mkpath(port) &&
           writeFile(port + QLatin1String("/uevent"),
                     "MAJOR=" + major + "\nMINOR=" + minor + "\nDEVNAME=" + name.toLatin1() + '\n') &&
           writeFile(port + QLatin1String("/dev"), major + ':' + minor + '\n') &&
           link(port + QLatin1String("/subsystem"), path(QStringLiteral("sys/class/tty"))) &&
           link(port + QLatin1String("/device"), interface) &&
           QFile::link(terminal, path(QLatin1String("dev/") + name)) &&
           link(path(QLatin1String("sys/class/tty/") + name), port);
}

void UsbTree::pullOut(int plug)
{
    QFile::remove(path(QLatin1String("sys/class/tty/") + portName(plug)));
    QFile::remove(path(QLatin1String("dev/") + portName(plug)));
    QFile::remove(path(QLatin1String("sys/bus/usb/devices/") + QFileInfo(usbDevice(plug)).fileName()));
    QDir(usbDevice(plug)).removeRecursively();
}

QProcessEnvironment UsbTree::programEnvironment(const QProcessEnvironment &base) const
{
    QProcessEnvironment environment = base;
    environment.insert(QStringLiteral("UMOCKDEV_DIR"), root());
    addTo(environment, QStringLiteral("LD_PRELOAD"), preloadLibrary);
    // A program built with the address sanitizer would not start behind another preloaded library.
    addTo(environment, QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    return environment;
}

bool UsbTree::canRedirect()
{
    void *library = ::dlopen(preloadLibrary.latin1(), RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        return false;
    ::dlclose(library);
    return true;
}

} // namespace loggersim
