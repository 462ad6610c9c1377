#include "device/ConfiguredDevice.h"

#include "device/DeviceWitness.h"
#include "device/TelnetDevice.h"

#include <QPointer>

ConfiguredDevice::ConfiguredDevice(const QString &serialNumber, int interfaceKind, QObject *parent)
    : QObject(parent),
      m_serialNumber(serialNumber),
      m_interfaceKind(interfaceKind),
      m_kind(linkKind(interfaceKind)),
      m_clock([] { return QDateTime::currentDateTime(); }),
      m_pollTime(m_clock()),
      m_pollMs(m_pollTime.toMSecsSinceEpoch()),
      m_conversation(m_pollMs),
      m_link(m_kind.makeLink(&m_conversation)),
      m_telnet(m_kind.isPolled ? dynamic_cast<TelnetDevice *>(m_link.get()) : nullptr),
      m_series(serialNumber)
{
    if (m_kind.tellsLoss) {
        m_link->connect(SIGNAL(connected()), this, SLOT(deviceConnected()));
        m_link->connect(SIGNAL(disconnected()), this, SLOT(deviceDisconnected()));
    }
    if (m_telnet)
        m_link->connect(SIGNAL(writeStartSync()), this, SLOT(slotWriteStartSync()));
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
    return m_settings.name;
}

QString ConfiguredDevice::ch1Name() const
{
    return m_settings.ch1Name;
}

QString ConfiguredDevice::ch2Name() const
{
    return m_settings.ch2Name;
}

QString ConfiguredDevice::address() const
{
    return m_settings.address;
}

quint16 ConfiguredDevice::port() const
{
    return m_settings.port;
}

void ConfiguredDevice::setDeviceInfo(const QString &name, const QString &ch1Name, const QString &ch2Name,
                                     const QString &address, quint16 port)
{
    m_settings.name = name;
    m_settings.ch1Name = ch1Name;
    m_settings.ch2Name = ch2Name;
    // A link that has forgotten an unplugged logger's port must not get it back because the logger was renamed.
    const bool isForgotten = m_isPortForgotten && address == m_settings.address;
    const bool isChanged = address != m_settings.address || port != m_settings.port;
    m_settings.address = address;
    m_settings.port = port;
    if (isForgotten || !isChanged)
        return;
    m_isPortForgotten = false;
    m_link->setDeviceInfo(address, port);
}

int ConfiguredDevice::ch1Unit() const
{
    return m_settings.ch1Unit;
}

int ConfiguredDevice::ch2Unit() const
{
    return m_settings.ch2Unit;
}

void ConfiguredDevice::setUnits(int unit1, int unit2)
{
    m_settings.ch1Unit = unit1;
    m_settings.ch2Unit = unit2;
}

QString ConfiguredDevice::ch1CustomUnit() const
{
    return m_settings.ch1CustomUnit;
}

QString ConfiguredDevice::ch2CustomUnit() const
{
    return m_settings.ch2CustomUnit;
}

void ConfiguredDevice::setCustomUnits(const QString &text1, const QString &text2)
{
    m_settings.ch1CustomUnit = text1;
    m_settings.ch2CustomUnit = text2;
}

AlarmRange ConfiguredDevice::alarmRange() const
{
    return m_settings.alarm.range;
}

void ConfiguredDevice::setAlarmRange(float min1, float max1, float min2, float max2)
{
    m_settings.alarm.range = {min1, max1, min2, max2};
}

QString ConfiguredDevice::buzzerAlarm() const
{
    return m_settings.alarm.buzzerRule;
}

void ConfiguredDevice::setBuzzerAlarm(const QString &rule)
{
    m_settings.alarm.buzzerRule = rule;
}

AlarmRange ConfiguredDevice::pendingAlarmRange() const
{
    return m_settings.pendingAlarm.range;
}

void ConfiguredDevice::setPendingAlarmRange(float min1, float max1, float min2, float max2)
{
    m_settings.pendingAlarm.range = {min1, max1, min2, max2};
}

QString ConfiguredDevice::pendingBuzzerAlarm() const
{
    return m_settings.pendingAlarm.buzzerRule;
}

void ConfiguredDevice::setPendingBuzzerAlarm(const QString &rule)
{
    m_settings.pendingAlarm.buzzerRule = rule;
}

void ConfiguredDevice::applyPendingSettings()
{
    m_settings.alarm = m_settings.pendingAlarm;
}

int ConfiguredDevice::dashboardNumber() const
{
    return m_settings.dashboardNumber;
}

void ConfiguredDevice::setDashboardNumber(int number)
{
    m_settings.dashboardNumber = number;
}

bool ConfiguredDevice::keepConnection() const
{
    return m_settings.keepConnection;
}

void ConfiguredDevice::setKeepConnection(bool keep)
{
    if (!m_telnet)
        return;
    m_settings.keepConnection = keep;
    m_telnet->setKeepConnection(keep);
}

void ConfiguredDevice::setRecording(bool recording)
{
    // What was held back is recorded before the series is closed; what is still to come will be too late for it.
    if (!recording) {
        m_conversation.settle();
        keepTimedReadings();
    }
    m_recording = recording;
}

bool ConfiguredDevice::isRecording() const
{
    return m_recording;
}

void ConfiguredDevice::setListItem(ListEntry *entry)
{
    m_views.setListItem(entry);
}

void ConfiguredDevice::setChartView(LiveChart *chart)
{
    m_views.setChart(chart);
}

void ConfiguredDevice::setTiles(ChannelTile *channel1, ChannelTile *channel2)
{
    m_views.setTiles(channel1, channel2);
}

void ConfiguredDevice::detachViews()
{
    m_views.detach();
}

void ConfiguredDevice::setWitness(DeviceWitness *witness)
{
    m_witness = witness;
}

bool ConfiguredDevice::openDevice()
{
    if (!m_kind.isPolled)
        return false;
    m_isPortForgotten = false;
    m_opensWithNextPoll = false;
    m_link->setDeviceInfo(m_settings.address, m_settings.port);
    const QPointer<ConfiguredDevice> self(this);
    const bool isOpening = m_link->open();
    if (self && isOpening)
        askPostponedPoll();
    return isOpening;
}

void ConfiguredDevice::closeDevice()
{
    closeFor(LossReason::Closed);
}

void ConfiguredDevice::closeFor(LossReason reason)
{
    m_postponedPoll.reset();
    m_opensWithNextPoll = false;
    m_link->close();
    // Also ends what would open the link again.
    if (m_connected || m_exchange.isRunning())
        lose(reason);
}

bool ConfiguredDevice::isOpen() const
{
    return m_link->isOpen();
}

void ConfiguredDevice::releasePort()
{
    m_conversation.settle();
    keepTimedReadings();
    m_postponedPoll = m_conversation.unansweredRecordPoll();
    m_link->close();
}

bool ConfiguredDevice::opensWithNextPoll() const
{
    return m_opensWithNextPoll;
}

void ConfiguredDevice::forgetPort()
{
    const QPointer<ConfiguredDevice> self(this);
    closeFor(LossReason::Unplugged);
    if (!self)
        return;
    m_isPortForgotten = true;
    m_link->setDeviceInfo({}, m_settings.port);
}
