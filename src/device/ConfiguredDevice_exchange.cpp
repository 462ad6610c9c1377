#include "device/ConfiguredDevice.h"

#include "device/DataInterval.h"
#include "device/Logging.h"
#include "device/TelnetDevice.h"

#include <QPointer>

// Writing the alarm limits and the buzzer rule into a network logger: one command at a time, the next one only after
// the logger has acknowledged the last.

namespace {

/// Leaves the exchange half of the two seconds that the operator is made to wait at most.
constexpr int owedReplyMs = 1000;

QString limitCommand(const char *name, float limit)
{
    return QLatin1String(name) + QLatin1Char(' ') + QString::number(static_cast<double>(limit), 'f', 2) +
           QLatin1String("\r\n");
}

} // namespace

void ConfiguredDevice::startSyncTelnet()
{
    if (m_interfaceKind != NetworkInterface)
        return;
    ++m_exchangeNumber;
    m_exchange = Exchange::Started;
    if (!m_telnet->owesReply()) {
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
    m_telnet->setBuzzerFlag(true);
    if (dataIntervalMs <= 1000)
        m_telnet->write();
    else
        m_telnet->open();
}

void ConfiguredDevice::slotWriteStartSync()
{
    if (m_interfaceKind != NetworkInterface || m_exchange != Exchange::Started)
        return;
    if (!sendCommand(limitCommand("ATBMIN1", m_pendingAlarmRange.min1)))
        m_exchange = Exchange::Idle;
}

void ConfiguredDevice::stopSyncTelnet()
{
    if (m_interfaceKind != NetworkInterface)
        return;
    logDevice() << "- ConfiguredDevice::stopSyncTelnet() : set buzzerflag false";
    m_exchange = Exchange::Idle;
    m_owedReplyTimer.stop();
    m_telnet->setBuzzerFlag(false);
    if (closesAfterExchange())
        m_telnet->close();
}

void ConfiguredDevice::beginExchangeIfNothingIsOwed()
{
    // From the event loop: the link, inside its socket's notification, may just have closed the connection.
    if (m_owedReplyTimer.isActive() && !m_telnet->owesReply())
        m_owedReplyTimer.start(0);
}

bool ConfiguredDevice::isExchangeRunning() const
{
    return m_exchange != Exchange::Idle;
}

int ConfiguredDevice::exchangeNumber() const
{
    return m_exchangeNumber;
}

void ConfiguredDevice::takeExchangeReply(const QString &reply)
{
    if (reply != QLatin1String("OK")) {
        endExchange([this] { emit buzzerSyncError(QStringLiteral("Device Setup Failed.")); },
                    "[ERROR] - ConfiguredDevice::readData() : NOT OK", reply);
    } else if (m_exchange == Exchange::SetSent) {
        endExchange([this] { emit buzzerSyncSuccess(); }, "- ConfiguredDevice::readData() : STATE_END", reply);
    } else if (!sendNextCommand()) {
        endExchange([this] { emit buzzerSyncError(QStringLiteral("Device communication failure.")); },
                    "[ERROR] - ConfiguredDevice::readData() : STATE_ERROR OK", reply);
    }
}

bool ConfiguredDevice::sendNextCommand()
{
    const AlarmRange &range = m_pendingAlarmRange;
    switch (m_exchange) {
    case Exchange::Started:
        m_exchange = Exchange::Max1Sent;
        return sendCommand(limitCommand("ATBMAX1", range.max1));
    case Exchange::Max1Sent:
        m_exchange = Exchange::Min2Sent;
        return sendCommand(limitCommand("ATBMIN2", range.min2));
    case Exchange::Min2Sent:
        m_exchange = Exchange::Max2Sent;
        return sendCommand(limitCommand("ATBMAX2", range.max2));
    case Exchange::Max2Sent:
        m_exchange = Exchange::RuleSent;
        return sendRule();
    case Exchange::RuleSent:
        m_exchange = Exchange::SetSent;
        return sendCommand(QStringLiteral("ATBSET\r\n"));
    case Exchange::Idle:
    case Exchange::SetSent:
        break;
    }
    return true;
}

bool ConfiguredDevice::sendRule()
{
    const QString command = QStringLiteral("ATBAL %1\r\n").arg(m_pendingBuzzerAlarm);
    logDevice() << "[DEBUG] - ConfiguredDevice : szCommand : " << command << " [" << m_serialNumber << "]";
    return sendCommand(command);
}

bool ConfiguredDevice::sendCommand(const QString &command)
{
    return m_telnet->writeCommand(command.toLatin1()) >= 1;
}

void ConfiguredDevice::endExchange(const std::function<void()> &report, const char *logText, const QString &reply)
{
    const QPointer<ConfiguredDevice> self(this);
    const QString serialNumber = m_serialNumber;
    m_exchange = Exchange::Idle;
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
}

bool ConfiguredDevice::closesAfterExchange() const
{
    return dataIntervalMs > 1000 && !m_keepConnection;
}
