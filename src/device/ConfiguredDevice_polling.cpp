#include "device/ConfiguredDevice.h"

#include "device/AbstractDevice.h"
#include "device/ChartTime.h"
#include "device/DataInterval.h"
#include "device/Logging.h"
#include "device/ReplyParser.h"

#include <QPointer>

namespace {

double shownValue(const QString &text)
{
    return text.isEmpty() || text.contains(QLatin1String("----")) ? noValue : text.toDouble();
}

} // namespace

void ConfiguredDevice::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

QDateTime ConfiguredDevice::pollTime() const
{
    return m_pollTime;
}

void ConfiguredDevice::stampPollTime()
{
    m_pollTime = m_clock();
    m_pollMs = m_pollTime.toMSecsSinceEpoch();
}

void ConfiguredDevice::pollForDisplay()
{
    if (restsFromPolling())
        return;
    m_displayPollOutstanding = true;
    if (!sendPoll())
        return;
    if (m_interfaceKind == NetworkInterface)
        countMissedReply();
    else if (m_interfaceKind == UsbInterface && !m_link->isOpen())
        m_link->open();
}

void ConfiguredDevice::pollForRecord()
{
    if (restsFromPolling())
        return;
    stampPollTime();
    if (sendPoll() && m_interfaceKind == NetworkInterface)
        countMissedReply();
}

/// False when a view had this device deleted on hearing that the link has failed.
bool ConfiguredDevice::sendPoll()
{
    const QPointer<ConfiguredDevice> self(this);
    m_link->write();
    return self;
}

bool ConfiguredDevice::restsFromPolling() const
{
    return m_interfaceKind == NoInterface || m_exchange.isRunning();
}

void ConfiguredDevice::countMissedReply()
{
    const int limit = dataIntervalMs <= 1000 ? 5 : 2;
    m_unansweredPolls = m_link->isOpen() ? m_unansweredPolls + 1 : 0;
    if (++m_missedReplies <= limit)
        return;
    m_missedReplies = limit;
    // A connection to a logger that has vanished looks alive for minutes. It is given up when the device goes from
    // connected to disconnected, later only after it has had its own chance to answer: closing it on every poll would
    // cut short each attempt to reach the logger again.
    const bool givesUp = m_link->isOpen() && (m_connected || m_unansweredPolls > limit);
    const QPointer<ConfiguredDevice> self(this);
    deviceDisconnected();
    if (self && givesUp) {
        m_unansweredPolls = 0;
        m_link->close();
    }
}

void ConfiguredDevice::readData(const QString &text)
{
    if (m_interfaceKind == NetworkInterface && m_exchange.isRunning() && !m_owedReplyTimer.isActive()) {
        takeExchangeReply(QString(text).remove(QLatin1Char('\n')));
        return;
    }
    m_missedReplies = 0;
    m_unansweredPolls = 0;
    const QVector<Reading> readings = parseReply(text);
    const QPointer<ConfiguredDevice> self(this);
    deviceConnected();
    for (const Reading &reading : readings) {
        if (!self)
            return;
        takeReading(reading);
    }
    if (self)
        beginExchangeIfNothingIsOwed();
}

void ConfiguredDevice::takeReading(const Reading &reading)
{
    const double value1 = reading.channel1.value;
    const double value2 = reading.channel2.value;
    m_ch1Value = reading.channel1.text();
    m_ch2Value = reading.channel2.text();
    judgeAlarms(value1, value2);
    const qint64 seconds = m_pollMs / 1000;
    m_history.add(chartTime2(seconds) + static_cast<double>(m_pollMs % 1000) / 1000.0, value1, value2);

    const QPointer<ConfiguredDevice> self(this);
    m_views.showReading(m_history, m_ch1Value, m_ch2Value);
    if (!self)
        return;
    if (m_recording && !m_displayPollOutstanding)
        m_series.add(m_pollMs, value1, value2);
    m_displayPollOutstanding = false;
}

void ConfiguredDevice::judgeAlarms(double value1, double value2)
{
    m_alarms.judge(m_settings.alarm.range, value1, value2);
    if (m_alarms.isOnChannel1())
        logDevice() << "- ConfiguredDevice::setCheckAlarmSet1() : " << m_serialNumber;
    if (m_alarms.isOnChannel2())
        logDevice() << "- ConfiguredDevice::setCheckAlarmSet2() : " << m_serialNumber;
}

void ConfiguredDevice::insertNoValue()
{
    logDevice() << "- ConfiguredDevice::insertNoValue() : " << m_serialNumber;
    m_series.close();
}

void ConfiguredDevice::checkAlarmAll()
{
    const double value1 = shownValue(m_ch1Value);
    const double value2 = shownValue(m_ch2Value);
    logDevice() << "@@@@@@@@@@@@@@ checkAlarmAll A : " << value1 << ", B : " << value2;
    judgeAlarms(value1, value2);
}

void ConfiguredDevice::deviceConnected()
{
    m_connected = true;
    m_views.showConnected(m_serialNumber);
}

void ConfiguredDevice::deviceDisconnected()
{
    m_connected = false;
    m_ch1Value.clear();
    m_ch2Value.clear();
    m_alarms.clear();
    m_exchange.stop();
    m_owedReplyTimer.stop();
    m_views.showDisconnected(m_serialNumber);
}

bool ConfiguredDevice::isConnected() const
{
    return m_connected;
}

QString ConfiguredDevice::ch1Value() const
{
    return m_ch1Value;
}

QString ConfiguredDevice::ch2Value() const
{
    return m_ch2Value;
}

bool ConfiguredDevice::alarmOnChannel1() const
{
    return m_alarms.isOnChannel1();
}

bool ConfiguredDevice::alarmOnChannel2() const
{
    return m_alarms.isOnChannel2();
}

void ConfiguredDevice::history(History &times, History &channel1, History &channel2) const
{
    times = m_history.times();
    channel1 = m_history.channel1();
    channel2 = m_history.channel2();
}
