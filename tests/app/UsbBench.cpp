#include "UsbBench.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "store/InsertSerialData.h"

#include <QTimer>
#include <cmath>
#include <unistd.h>

namespace {

constexpr int neverMs = 24 * 60 * 60 * 1000;

/// An opened serial port is locked by its name for the whole machine, so each program takes names of its own.
int firstPlug()
{
    return 100 * ::getpid();
}

} // namespace

UsbBench::UsbBench() = default;

UsbBench::~UsbBench() = default;

QString UsbBench::key(int number)
{
    return QStringLiteral("4455%1").arg(number, 4, 10, QLatin1Char('0'));
}

QString UsbBench::port(int socket)
{
    return loggersim::UsbTree::portName(firstPlug() + socket);
}

loggersim::SerialLogger &UsbBench::logger(int number)
{
    if (m_loggers.count(number) == 0)
        makeDouble(number, number);
    return *m_loggers[number];
}

void UsbBench::makeDouble(int number, int of)
{
    const loggersim::Climate climate{QStringLiteral("Room %1").arg(number), 10.0 * number, 0, 10.0 * number, 0};
    m_loggers[number] =
        std::make_unique<loggersim::SerialLogger>(key(of), climate, quint32(number), &m_tree, firstPlug() + number);
}

void UsbBench::plugIn(int number, int socket)
{
    logger(number).setPlug(firstPlug() + socket);
    if (!logger(number).plugIn())
        qFatal("no serial port for a logger");
}

DeviceEntry UsbBench::entry(int number, int socket)
{
    DeviceEntry entry;
    entry.name = QStringLiteral("Room %1").arg(number);
    entry.serialNumber = key(number);
    entry.interfaceKind = UsbInterface;
    entry.address = port(socket);
    return entry;
}

void UsbBench::open(std::initializer_list<int> numbers)
{
    QList<DeviceEntry> devices;
    for (const int number : numbers)
        devices << entry(number, number);
    open(devices);
}

void UsbBench::open(const QList<DeviceEntry> &devices)
{
    m_fixture.writeProject(m_name, devices, neverMs);
    m_station = std::make_unique<SorvantoMain>();
    child<QTimer>(*m_station, "checkTimer")->stop();
    m_station->projectLoaded(projectPath());
    m_station->slotStartRecord();
}

void UsbBench::letTimersRun(int intervalMs)
{
    child<QTimer>(*m_station, "checkTimer")->start();
    child<QTimer>(*m_station, "writeDeviceTimer")->start(intervalMs);
}

void UsbBench::scan()
{
    m_station->checkConnection();
}

ConfiguredDevice *UsbBench::device(int number) const
{
    const QList<ConfiguredDevice *> devices = m_station->configuredDevices();
    const auto found = std::find_if(devices.cbegin(), devices.cend(), [number](const ConfiguredDevice *device) {
        return device->serialNumber() == key(number);
    });
    return found == devices.cend() ? nullptr : *found;
}

bool UsbBench::isOpen(int number) const
{
    return device(number)->isOpen();
}

QStringList UsbBench::keysInReach() const
{
    QStringList keys;
    const QList<AvailDevice *> records = m_station->availDevices();
    for (const AvailDevice *record : records) {
        if (record->kind == UsbInterface)
            keys << record->key;
    }
    keys.sort();
    return keys;
}

QString UsbBench::savedPort(int number) const
{
    const auto devices = ProjectFile(projectPath()).readDevices();
    for (const DeviceEntry &entry : devices.value_or(QList<DeviceEntry>())) {
        if (entry.serialNumber == key(number))
            return entry.address;
    }
    return {};
}

bool UsbBench::answers(int number)
{
    // No two successive readings of a logger are equal.
    const ConfiguredDevice *asked = device(number);
    const QString before = asked->ch1Value() + asked->ch2Value();
    m_station->writeDevice();
    return QTest::qWaitFor([&] {
        const QString shown = asked->ch1Value() + asked->ch2Value();
        return !shown.isEmpty() && shown != before;
    });
}

QString UsbBench::endAndJudgeRows()
{
    if (!m_station)
        return {};
    m_station->stopRunningRecording();
    const QList<RecordedRow> rows = m_fixture.rows(m_name);
    for (const RecordedRow &row : rows) {
        const double expected = row.serial.right(4).toInt() * 10.0;
        for (const QVariant &value : {row.channel1, row.channel2}) {
            if (!row.isGap() && std::abs(value.toDouble() - expected) > 1)
                return QStringLiteral("%1 under the key %2").arg(value.toString(), row.serial);
        }
    }
    return {};
}
