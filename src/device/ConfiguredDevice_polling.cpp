#include "device/ConfiguredDevice.h"

#include "device/ChartTime.h"
#include "device/DataInterval.h"
#include "device/DeviceWitness.h"
#include "device/Logging.h"
#include "device/ReplyParser.h"
#include "device/TelnetDevice.h"

#include <QPointer>
#include <utility>

namespace {

double shownValue(const QString &text)
{
    return text.isEmpty() || text.contains(QLatin1String("----")) ? noValue : text.toDouble();
}

double chartTimeOf(qint64 timeMs)
{
    return chartTime2(timeMs / 1000) + static_cast<double>(timeMs % 1000) / 1000.0;
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
    if (restsFromPolling() || !openLinkForPoll() || !sendPoll({false, m_clock().toMSecsSinceEpoch()}))
        return;
    if (m_kind.tellsLoss && !m_link->isOpen())
        m_link->open();
    else
        countMissedReply();
}

void ConfiguredDevice::pollForRecord()
{
    if (restsFromPolling() || !openLinkForPoll())
        return;
    stampPollTime();
    if (sendPoll({true, m_pollMs}))
        countMissedReply();
}

bool ConfiguredDevice::awaitsReading() const
{
    const auto poll = m_conversation.unansweredRecordPoll();
    return m_recording && poll && m_clock().toMSecsSinceEpoch() - poll->timeMs <= LoggerConversation::longestReplyMs;
}

bool ConfiguredDevice::restsFromPolling() const
{
    return !m_kind.isPolled || m_exchange.isRunning();
}

/// Gives a USB logger that had stopped to answer another chance. Like sendPoll() false when a view had this device
/// deleted on hearing that the link has failed.
bool ConfiguredDevice::openLinkForPoll()
{
    const QPointer<ConfiguredDevice> self(this);
    if (std::exchange(m_opensWithNextPoll, false))
        m_link->open();
    return self;
}

bool ConfiguredDevice::sendPoll(const LoggerConversation::Poll &poll)
{
    m_conversation.ask(poll);
    keepTimedReadings();
    const QPointer<ConfiguredDevice> self(this);
    m_link->write();
    if (!self)
        return false;
    // While the link is kept for an exchange it sends nothing else.
    if (poll.isForRecord && m_telnet && m_telnet->buzzerFlag())
        m_postponedPoll = m_conversation.takeDueRecordPoll();
    m_conversation.forgetPollNotSent();
    return true;
}

void ConfiguredDevice::askPostponedPoll()
{
    const auto poll = std::exchange(m_postponedPoll, std::nullopt);
    if (poll && m_clock().toMSecsSinceEpoch() - poll->timeMs <= LoggerConversation::longestReplyMs)
        sendPoll(*poll);
}

void ConfiguredDevice::countMissedReply()
{
    const int limit = dataIntervalMs <= 1000 ? m_kind.missedRepliesOfSeconds : m_kind.missedReplies;
    m_unansweredPolls = m_link->isOpen() ? m_unansweredPolls + 1 : 0;
    if (m_kind.tellsLoss && !m_link->isOpen())
        return; // that was reported at once
    if (++m_missedReplies > limit)
        giveUpSilentLink(limit);
}

/// A connection to a logger that has vanished looks alive for minutes, and the port of one that hangs for ever. It is
/// given up when the device goes from connected to disconnected, later only after it has had its own chance to answer:
/// closing it on every poll would cut short each attempt to reach the logger again.
void ConfiguredDevice::giveUpSilentLink(int missedLimit)
{
    m_missedReplies = missedLimit;
    const bool givesUp = m_link->isOpen() && (m_connected || m_unansweredPolls > missedLimit);
    const QPointer<ConfiguredDevice> self(this);
    lose(LossReason::NoAnswer);
    if (!self || !givesUp)
        return;
    m_unansweredPolls = 0;
    m_link->close();
    m_opensWithNextPoll = m_kind.tellsLoss;
}

void ConfiguredDevice::readData(const QString &text)
{
    if (m_exchange.isRunning() && !m_owedReplyTimer.isActive()) {
        takeExchangeText(text);
        return;
    }
    const QPointer<ConfiguredDevice> self(this);
    takeReadings(text);
    if (self)
        beginExchangeIfNothingIsOwed();
}

/// Recorded first: what has arrived is kept, whatever the views do about it.
void ConfiguredDevice::takeReadings(const QString &text)
{
    m_missedReplies = 0;
    m_unansweredPolls = 0;
    const QVector<Reading> readings = parseReply(text);
    m_conversation.answer(readings, m_recording);
    keepTimedReadings();
    for (const Reading &reading : readings) {
        logDevice() << "- ConfiguredDevice::takeReadings() : " << m_serialNumber << " : " << reading.channel1.text()
                    << "," << reading.channel2.text();
    }
    const QPointer<ConfiguredDevice> self(this);
    deviceConnected();
    if (!self || readings.isEmpty())
        return;
    for (const Reading &reading : readings)
        judgeAlarms(reading.channel1.value, reading.channel2.value);
    showReading(readings.last());
}

void ConfiguredDevice::keepTimedReadings()
{
    const auto readings = m_conversation.takeTimed();
    for (const LoggerConversation::TimedReading &reading : readings)
        m_history.add(chartTimeOf(reading.timeMs), reading.value1, reading.value2, dataIntervalMs);
    m_series.add(readings, m_conversation.heldReadings());
}

/// Of a reply's readings only the newest: nobody would see the others, and each would be formatted and drawn.
void ConfiguredDevice::showReading(const Reading &reading)
{
    m_ch1Value = reading.channel1.text();
    m_ch2Value = reading.channel2.text();
    m_views.showReading(m_history, m_ch1Value, m_ch2Value);
}

void ConfiguredDevice::judgeAlarms(double value1, double value2)
{
    const ChannelAlarms before = m_alarms;
    m_alarms.judge(m_settings.alarm.range, value1, value2);
    tellAlarms(before, value1, value2);
    if (m_alarms.isOnChannel1())
        logDevice() << "- ConfiguredDevice::setCheckAlarmSet1() : " << m_serialNumber;
    if (m_alarms.isOnChannel2())
        logDevice() << "- ConfiguredDevice::setCheckAlarmSet2() : " << m_serialNumber;
}

void ConfiguredDevice::tellAlarms(const ChannelAlarms &before, double value1, double value2)
{
    if (!m_witness)
        return;
    const AlarmRange &range = m_settings.alarm.range;
    if (before.isOnChannel1() != m_alarms.isOnChannel1())
        m_witness->alarmChanged(*this, {1, m_alarms.isOnChannel1(), value1, range.min1, range.max1});
    if (before.isOnChannel2() != m_alarms.isOnChannel2())
        m_witness->alarmChanged(*this, {2, m_alarms.isOnChannel2(), value2, range.min2, range.max2});
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
    if (!std::exchange(m_connected, true) && m_witness)
        m_witness->loggerConnected(*this);
    m_views.showConnected(m_serialNumber);
}

void ConfiguredDevice::deviceDisconnected()
{
    lose(LossReason::LinkFailed);
}

void ConfiguredDevice::lose(LossReason reason)
{
    const ChannelAlarms before = m_alarms;
    m_alarms.clear();
    tellAlarms(before, noValue, noValue);
    if (m_exchange.isRunning())
        tellExchangeFailed(QStringLiteral("The logger was lost."));
    if (std::exchange(m_connected, false) && m_witness)
        m_witness->loggerLost(*this, reason);
    if (m_kind.tellsLoss)
        m_missedReplies = 0; // its open port will count as connected again
    m_ch1Value.clear();
    m_ch2Value.clear();
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

const History &ConfiguredDevice::historyIntervals() const
{
    return m_history.intervals();
}
