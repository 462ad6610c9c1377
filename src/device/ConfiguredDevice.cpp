#include "device/ConfiguredDevice.h"

#include "device/SerialDevice.h"
#include "device/TelnetDevice.h"
#include "store/PendingRow.h"

bool operator==(const AlarmRange &a, const AlarmRange &b)
{
    return a.min1 == b.min1 && a.max1 == b.max1 && a.min2 == b.min2 && a.max2 == b.max2;
}

bool operator!=(const AlarmRange &a, const AlarmRange &b)
{
    return !(a == b);
}

ConfiguredDevice::ConfiguredDevice(const QString &serialNumber, int interfaceKind, QObject *parent)
    : QObject(parent),
      m_serialNumber(serialNumber),
      m_interfaceKind(interfaceKind),
      m_clock([] { return QDateTime::currentDateTime(); })
{
    stampPollTime();
    m_lastRecordedTime = m_pollTime;
    m_times.fill(noValue);
    m_history1.fill(noValue);
    m_history2.fill(noValue);

    if (interfaceKind == UsbInterface) {
        m_link = std::make_unique<SerialDevice>();
        m_link->connect(SIGNAL(connected()), this, SLOT(deviceConnected()));
        m_link->connect(SIGNAL(disconnected()), this, SLOT(deviceDisconnected()));
    } else {
        auto telnet = std::make_unique<TelnetDevice>();
        m_telnet = telnet.get();
        m_link = std::move(telnet);
        m_link->connect(SIGNAL(writeStartSync()), this, SLOT(slotWriteStartSync()));
    }
    m_link->connect(SIGNAL(readyRead(QString)), this, SLOT(readData(QString)));

    m_owedReplyTimer.setSingleShot(true);
    connect(&m_owedReplyTimer, &QTimer::timeout, this, &ConfiguredDevice::beginExchange);
}

ConfiguredDevice::~ConfiguredDevice()
{
    m_telnet = nullptr;
    m_link.reset();
}

QString ConfiguredDevice::serialNumber() const
{
    return m_serialNumber;
}

int ConfiguredDevice::interfaceKind() const
{
    return m_interfaceKind;
}

QString ConfiguredDevice::deviceName() const
{
    return m_deviceName;
}

QString ConfiguredDevice::ch1Name() const
{
    return m_ch1Name;
}

QString ConfiguredDevice::ch2Name() const
{
    return m_ch2Name;
}

QString ConfiguredDevice::address() const
{
    return m_address;
}

quint16 ConfiguredDevice::port() const
{
    return m_port;
}

void ConfiguredDevice::setDeviceInfo(const QString &name, const QString &ch1Name, const QString &ch2Name,
                                     const QString &address, quint16 port)
{
    m_deviceName = name;
    m_ch1Name = ch1Name;
    m_ch2Name = ch2Name;
    // A link that has forgotten an unplugged logger's port must not get it back because the logger was renamed.
    if (address == m_address && port == m_port)
        return;
    m_address = address;
    m_port = port;
    m_link->setDeviceInfo(address, port);
}

int ConfiguredDevice::ch1Unit() const
{
    return m_ch1Unit;
}

int ConfiguredDevice::ch2Unit() const
{
    return m_ch2Unit;
}

void ConfiguredDevice::setUnits(int unit1, int unit2)
{
    m_ch1Unit = unit1;
    m_ch2Unit = unit2;
}

QString ConfiguredDevice::ch1CustomUnit() const
{
    return m_ch1CustomUnit;
}

QString ConfiguredDevice::ch2CustomUnit() const
{
    return m_ch2CustomUnit;
}

void ConfiguredDevice::setCustomUnits(const QString &text1, const QString &text2)
{
    m_ch1CustomUnit = text1;
    m_ch2CustomUnit = text2;
}

AlarmRange ConfiguredDevice::alarmRange() const
{
    return m_alarmRange;
}

void ConfiguredDevice::setAlarmRange(float min1, float max1, float min2, float max2)
{
    m_alarmRange = {min1, max1, min2, max2};
}

QString ConfiguredDevice::buzzerAlarm() const
{
    return m_buzzerAlarm;
}

void ConfiguredDevice::setBuzzerAlarm(const QString &rule)
{
    m_buzzerAlarm = rule;
}

AlarmRange ConfiguredDevice::pendingAlarmRange() const
{
    return m_pendingAlarmRange;
}

void ConfiguredDevice::setPendingAlarmRange(float min1, float max1, float min2, float max2)
{
    m_pendingAlarmRange = {min1, max1, min2, max2};
}

QString ConfiguredDevice::pendingBuzzerAlarm() const
{
    return m_pendingBuzzerAlarm;
}

void ConfiguredDevice::setPendingBuzzerAlarm(const QString &rule)
{
    m_pendingBuzzerAlarm = rule;
}

void ConfiguredDevice::applyPendingSettings()
{
    m_alarmRange = m_pendingAlarmRange;
    m_buzzerAlarm = m_pendingBuzzerAlarm;
}

int ConfiguredDevice::dashboardNumber() const
{
    return m_dashboardNumber;
}

void ConfiguredDevice::setDashboardNumber(int number)
{
    m_dashboardNumber = number;
}

bool ConfiguredDevice::keepConnection() const
{
    return m_keepConnection;
}

void ConfiguredDevice::setKeepConnection(bool keep)
{
    if (m_interfaceKind != NetworkInterface)
        return;
    m_keepConnection = keep;
    m_telnet->setKeepConnection(keep);
}

void ConfiguredDevice::setRecording(bool recording)
{
    m_recording = recording;
}

bool ConfiguredDevice::isRecording() const
{
    return m_recording;
}

void ConfiguredDevice::setListItem(ListEntry *entry)
{
    m_listItem = entry;
    if (entry)
        entry->setConnectionState(false);
}

void ConfiguredDevice::setChartView(LiveChart *chart)
{
    m_chartView = chart;
}

void ConfiguredDevice::setTiles(ChannelTile *channel1, ChannelTile *channel2)
{
    m_tile1 = channel1;
    m_tile2 = channel2;
}

void ConfiguredDevice::detachViews()
{
    m_listItem = nullptr;
    m_chartView = nullptr;
    m_tile1 = nullptr;
    m_tile2 = nullptr;
}

bool ConfiguredDevice::openDevice()
{
    if (m_interfaceKind == NoInterface)
        return false;
    m_link->setDeviceInfo(m_address, m_port);
    return m_link->open();
}

void ConfiguredDevice::closeDevice()
{
    m_owedReplyTimer.stop(); // what waits for it would open the link again
    m_link->close();
}

bool ConfiguredDevice::isOpen() const
{
    return m_link->isOpen();
}

void ConfiguredDevice::forgetPort()
{
    closeDevice();
    m_link->setDeviceInfo({}, m_port);
}
