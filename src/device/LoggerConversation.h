#pragma once

#include <QByteArray>
#include <QVector>
#include <optional>

struct Reading;

/// The conversation with one logger: which poll is due, which polls and commands are under way on the connection that
/// stands, and which poll a reading answers. The link tells what it sends and hears, the device what it wants and gets;
/// nothing is sent from here. Times are milliseconds since the epoch.
class LoggerConversation
{
public:
    struct Poll
    {
        bool isForRecord = false;
        qint64 timeMs = 0;
    };
    /// A reading with the time of the poll that it answers.
    struct RecordedReading
    {
        qint64 timeMs;
        double value1;
        double value2;
    };

    /// @p startMs is the time of readings that come before the first poll for a record.
    explicit LoggerConversation(qint64 startMs) : m_recordTimeMs(startMs) {}

    // What the device does.

    /// Before the link is told to poll. One poll goes out on a connection that is still being made, whatever number was
    /// tried: for a record if any of them was, with the time of the latest.
    void ask(const Poll &poll);
    /// After the link was told to poll: a poll that was neither sent nor waits for its connection leaves nothing
    /// behind.
    void forgetPollNotSent();
    /// The readings of what has arrived, in its order. Whether they are to be recorded is a matter of this moment, even
    /// where it becomes clear only later which polls they answer.
    void answer(const QVector<Reading> &readings, bool isRecording);
    /// Decides about readings that could still answer more than one poll: what is missing will not come any more.
    void settle();
    /// The readings to be recorded that came up since the last call.
    QVector<RecordedReading> takeRecorded();

    /// Takes back the poll that waits for its connection, if it is one for a record.
    std::optional<Poll> takeDueRecordPoll();
    /// The latest poll for a record that was sent and not answered.
    std::optional<Poll> unansweredRecordPoll() const;
    bool isAnyPollUnanswered() const { return !m_unanswered.isEmpty(); }

    // What the link does.

    void linkOpening();
    void linkSent(const QByteArray &command);
    /// Everything that arrives, before any of it is judged.
    void linkHeard(const QByteArray &bytes);
    /// What had arrived before may still be handed to answer().
    void linkClosed();

    /// Whether a line of the logger's is still to come: it has not answered, or not in full, something that was sent on
    /// the connection that stands.
    bool owesReply() const { return m_owedReplies > 0; }

private:
    /// Readings that answer nothing sent over a link: handed in without one, or more than were asked for.
    enum class Unasked { Recorded, RecordedAfterTheFirst, NotRecorded };

    struct Values
    {
        double channel1;
        double channel2;
    };

    /// What is to be recorded of one reply if it answers a poll for a record.
    using Answer = QVector<Values>;

    void hold(const QVector<Reading> &readings, bool isRecording);
    void takeUnasked(const QVector<Reading> &readings, bool isRecording);
    void giveUpPollsOlderThan(qint64 timeMs);
    void dropPollsTooMany();
    void leaveClosedConnection();

    std::optional<Poll> m_due;
    QVector<Poll> m_unanswered; ///< sent on this connection, oldest first
    QVector<Answer> m_held;     ///< too few yet to tell which of the unanswered polls they answer
    QVector<RecordedReading> m_recorded;
    qint64 m_recordTimeMs;
    Unasked m_unasked = Unasked::Recorded;
    int m_owedReplies = 0;
    QVector<int> m_repliesHeard; ///< the number of readings in each reply of what arrived last
    QByteArray m_lineBegun;      ///< of a reply that is owed
    bool m_isOpening = false;
    bool m_isClosed = false;
};
