#include "device/ConfiguredDevice.h"

#include "device/DataInterval.h"
#include "device/DeviceWitness.h"
#include "device/Logging.h"
#include "device/TelnetDevice.h"

#include <QPointer>

// Writing the alarm limits and the buzzer rule into a network logger: one command at a time, the next one only after
// the logger has acknowledged the last.

namespace {

/// Leaves the exchange half of the two seconds that the operator is made to wait at most.
constexpr int owedReplyMs = 1000;

} // namespace

void ConfiguredDevice::startSyncTelnet()
{
    if (!m_telnet)
        return;
    m_exchange.start();
    if (!m_conversation.owesReply()) {
        beginExchange();
        return;
    }
    // Taken for the acknowledgement of the first command, a reading on its way would end the exchange.
    m_telnet->setBuzzerFlag(false);
    m_owedReplyTimer.start(owedReplyMs);
}

void ConfiguredDevice::beginExchange()
{
    logDevice() << "- ConfiguredDevice::startSyncTelnet() : set buzzerflag true";
    m_owedReplyTimer.stop();
    // A poll whose connection is still being made would be sent no more.
    if (const auto due = m_conversation.takeDueRecordPoll())
        m_postponedPoll = due;
    m_telnet->setBuzzerFlag(true);
    if (dataIntervalMs <= 1000)
        m_telnet->write();
    else
        m_telnet->open();
}

void ConfiguredDevice::slotWriteStartSync()
{
    if (m_exchange.isAtFirstCommand() && !sendExchangeCommand())
        m_exchange.stop();
}

void ConfiguredDevice::stopSyncTelnet()
{
    if (!m_telnet)
        return;
    logDevice() << "- ConfiguredDevice::stopSyncTelnet() : set buzzerflag false";
    if (m_exchange.isRunning())
        tellExchangeFailed(QStringLiteral("It was given up before the logger had confirmed."));
    m_exchange.stop();
    m_owedReplyTimer.stop();
    releaseLinkFromExchange();
}

void ConfiguredDevice::beginExchangeIfNothingIsOwed()
{
    // From the event loop: the link, inside its socket's notification, may just have closed the connection.
    if (m_owedReplyTimer.isActive() && !m_conversation.owesReply())
        m_owedReplyTimer.start(0);
}

bool ConfiguredDevice::isExchangeRunning() const
{
    return m_exchange.isRunning();
}

int ConfiguredDevice::exchangeNumber() const
{
    return m_exchange.number();
}

/// What was asked before the exchange is answered before it, however late: that is a reading, not an acknowledgement.
void ConfiguredDevice::takeExchangeText(QString text)
{
    const QPointer<ConfiguredDevice> self(this);
    while (m_conversation.isAnyPollUnanswered() && text.startsWith(QLatin1String("ATDC"))) {
        QString reading = text.section(QLatin1Char('\n'), 0, 0);
        text.remove(0, reading.size() + 1);
        takeReadings(reading.remove(QLatin1Char(' ')).remove(QLatin1String("ATDC")));
        if (!self || text.isEmpty())
            return;
    }
    takeExchangeReply(text.remove(QLatin1Char('\n')));
}

void ConfiguredDevice::takeExchangeReply(const QString &reply)
{
    switch (m_exchange.takeReply(reply)) {
    case AlarmExchange::Progress::Refused:
        tellExchangeFailed(QStringLiteral("The logger refused."));
        endExchange([this] { emit buzzerSyncError(QStringLiteral("Device Setup Failed.")); },
                    "[ERROR] - ConfiguredDevice::readData() : NOT OK", reply);
        break;
    case AlarmExchange::Progress::Done:
        endExchange([this] { emit buzzerSyncSuccess(); }, "- ConfiguredDevice::readData() : STATE_END", reply);
        break;
    case AlarmExchange::Progress::NextCommand:
        if (!sendExchangeCommand()) {
            tellExchangeFailed(QStringLiteral("The connection broke."));
            endExchange([this] { emit buzzerSyncError(QStringLiteral("Device communication failure.")); },
                        "[ERROR] - ConfiguredDevice::readData() : STATE_ERROR OK", reply);
        }
        break;
    }
}

bool ConfiguredDevice::sendExchangeCommand()
{
    const QString command = m_exchange.command(m_settings.pendingAlarm);
    if (m_exchange.isAtRule())
        logDevice() << "[DEBUG] - ConfiguredDevice : szCommand : " << command << " [" << m_serialNumber << "]";
    return m_telnet->writeCommand(command.toLatin1()) >= 1;
}

void ConfiguredDevice::endExchange(const std::function<void()> &report, const char *logText, const QString &reply)
{
    const QPointer<ConfiguredDevice> self(this);
    const QString serialNumber = m_serialNumber;
    m_exchange.stop();
    report();
    // Whoever heard the report may have deleted this device, and its link with it.
    if (self)
        releaseLinkFromExchange();
    logDevice() << logText << " [" << serialNumber << "] : " << reply;
}

void ConfiguredDevice::releaseLinkFromExchange()
{
    if (closesAfterExchange())
        m_telnet->close();
    m_telnet->setBuzzerFlag(false);
    askPostponedPoll();
}

void ConfiguredDevice::tellExchangeFailed(const QString &reason)
{
    if (m_witness)
        m_witness->exchangeFailed(*this, reason);
}

bool ConfiguredDevice::closesAfterExchange() const
{
    return dataIntervalMs > 1000 && !m_settings.keepConnection;
}
