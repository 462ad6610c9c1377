#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What one logger may send. Honest loggers stay far below; what one of them costs at most, sixteen cost in one turn of
/// the event loop, which must not keep the others waiting.
namespace replyBounds {

/// Lines since the last poll, a piece without a line end counted as one. A logger that was out of reach for a while
/// answers a dozen polls at once; one that sends more readings than it was asked for still has room.
constexpr int linesPerPoll = 128;
/// The lines above at 128 characters each, where a reading has twenty.
constexpr int bytesPerPoll = 16 * 1024;
/// Four such answers: polls come closer than a second only from "Refresh Devices" and in the exchange of alarm
/// settings.
constexpr int bytesPerSecond = 4 * bytesPerPoll;
/// Characters without a comma or line end. The longest number there is has 309 digits before its point.
constexpr int fieldLength = 4096;

} // namespace replyBounds

/// Judges everything that arrives from one logger by replyBounds.
class ReplyGuard
{
public:
    /// Milliseconds that only ever grow.
    using Clock = qint64 (*)();

    explicit ReplyGuard(Clock clock = steadyClock);

    /// To be told of each poll or command that is sent: the logger may answer anew.
    void pollSent();
    /// Whether what one notification carried is within the bounds. Once it is not, nothing is until the next poll.
    bool admits(const QByteArray &bytes);
    /// What the logger has done, to be logged: once, and again only after it has answered and then kept within the
    /// bounds for a second. One that floods in pieces may well answer before it does.
    QString takeComplaint();

    static qint64 steadyClock();

private:
    QString excessIn(const QByteArray &bytes);
    bool hasBehaved() const;

    const Clock m_clock;
    int m_linesOfPoll = 0;
    int m_bytesOfPoll = 0;
    int m_bytesOfSecond = 0;
    qint64 m_secondBegan = 0;
    QString m_excess;                     ///< since the last poll; empty while there is none
    std::optional<qint64> m_behavesSince; ///< the first bytes since the last excess
    bool m_hasComplained = false;
};
