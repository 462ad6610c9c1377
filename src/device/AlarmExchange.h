#pragma once

#include "device/AlarmRange.h"

/// Writing alarm limits and buzzer rule into a network logger: six commands, each sent only after the logger has
/// acknowledged the last. Knows neither the link nor the time.
class AlarmExchange
{
public:
    /// What a reply came to.
    enum class Progress {
        NextCommand, ///< command() is to be sent
        Refused,     ///< the exchange is over
        Done         ///< the exchange is over: the logger has acknowledged everything
    };

    void start();
    void stop();
    bool isRunning() const;
    /// Whether the first command is due, or sent and not acknowledged.
    bool isAtFirstCommand() const;
    bool isAtRule() const;
    /// How many exchanges were started so far.
    int number() const { return m_number; }

    /// The command whose turn it is, with its line end; empty unless the exchange is running.
    QString command(const AlarmSettings &settings) const;
    /// Takes the logger's reply to command(), without line ends; while the exchange is running.
    Progress takeReply(const QString &reply);

private:
    enum class State { Idle, Min1, Max1, Min2, Max2, Rule, Set };

    State m_state = State::Idle;
    int m_number = 0;
};
