#include "device/ConfiguredDevice.h"

#include "device/AbstractDevice.h"
#include "device/ChartTime.h"
#include "device/DataInterval.h"
#include "device/Logging.h"
#include "device/ReplyParser.h"
#include "store/InsertSerialData.h"

#include <QPointer>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Limits are kept as floats: a value that rounds to its limit is still within range.
bool isOutside(double value, float min, float max)
{
    if (isNoValue(value) || min == max)
        return false;
    if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        return true;
    const float rounded = static_cast<float>(value);
    return min > rounded || rounded > max;
}

void shiftIn(History &history, double newest)
{
    std::copy(history.begin() + 1, history.end(), history.begin());
    history.back() = newest;
}

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
    return m_interfaceKind == NoInterface || m_exchange != Exchange::Idle;
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
    if (m_interfaceKind == NetworkInterface && m_exchange != Exchange::Idle && !m_owedReplyTimer.isActive()) {
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
    addToHistory(chartTime2(seconds) + static_cast<double>(m_pollMs % 1000) / 1000.0, value1, value2);

    const QPointer<ConfiguredDevice> self(this);
    pushReading();
    if (!self)
        return;
    if (m_recording && !m_displayPollOutstanding)
        record(value1, value2);
    m_displayPollOutstanding = false;
}

void ConfiguredDevice::judgeAlarms(double value1, double value2)
{
    m_alarm1 = isOutside(value1, m_alarmRange.min1, m_alarmRange.max1);
    if (m_alarm1)
        logDevice() << "- ConfiguredDevice::setCheckAlarmSet1() : " << m_serialNumber;
    m_alarm2 = isOutside(value2, m_alarmRange.min2, m_alarmRange.max2);
    if (m_alarm2)
        logDevice() << "- ConfiguredDevice::setCheckAlarmSet2() : " << m_serialNumber;
}

void ConfiguredDevice::addToHistory(double time, double value1, double value2)
{
    if (m_times.back() == time) {
        m_history1.back() = value1;
        m_history2.back() = value2;
        return;
    }
    shiftIn(m_times, time);
    shiftIn(m_history1, value1);
    shiftIn(m_history2, value2);
}

void ConfiguredDevice::pushReading()
{
    const QPointer<ConfiguredDevice> self(this);
    if (m_chartView)
        m_chartView->updateData(m_times, m_history1, m_history2, m_ch1Value, m_ch2Value);
    if (self && m_tile1)
        m_tile1->setValue(m_ch1Value);
    if (self && m_tile2)
        m_tile2->setValue(m_ch2Value);
}

void ConfiguredDevice::record(double value1, double value2)
{
    InsertSerialData::enqueue({m_serialNumber, value1, value2, static_cast<quint32>(m_pollMs / 1000)});
    m_lastRecordedTime = m_pollTime;
}

void ConfiguredDevice::insertNoValue()
{
    logDevice() << "- ConfiguredDevice::insertNoValue() : " << m_serialNumber;
    const qint64 gapTime = m_lastRecordedTime.addMSecs(1000).toSecsSinceEpoch();
    InsertSerialData::enqueue({m_serialNumber, noValue, noValue, static_cast<quint32>(gapTime)});
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
    const QPointer<ConfiguredDevice> self(this);
    if (m_listItem)
        m_listItem->setConnectionState(true);
    if (self && m_chartView)
        m_chartView->setConnected(m_serialNumber);
    if (self && m_tile1)
        m_tile1->setConnected(m_serialNumber);
    if (self && m_tile2)
        m_tile2->setConnected(m_serialNumber);
}

void ConfiguredDevice::deviceDisconnected()
{
    m_connected = false;
    m_ch1Value.clear();
    m_ch2Value.clear();
    m_alarm1 = false;
    m_alarm2 = false;
    m_exchange = Exchange::Idle;
    m_owedReplyTimer.stop();
    const QPointer<ConfiguredDevice> self(this);
    if (m_listItem)
        m_listItem->setConnectionState(false);
    if (self && m_chartView)
        m_chartView->setDisconnected(m_serialNumber);
    if (self && m_tile1)
        m_tile1->setDisconnected(m_serialNumber);
    if (self && m_tile2)
        m_tile2->setDisconnected(m_serialNumber);
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
    return m_alarm1;
}

bool ConfiguredDevice::alarmOnChannel2() const
{
    return m_alarm2;
}

void ConfiguredDevice::history(History &times, History &channel1, History &channel2) const
{
    times = m_times;
    channel1 = m_history1;
    channel2 = m_history2;
}
