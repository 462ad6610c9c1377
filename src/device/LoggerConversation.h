#pragma once

#include <QByteArray>
#include <QVector>
#include <optional>
#include <vector>

struct Reading;

/// The conversation with one logger: which poll is due, which polls and commands are under way on the connection that
/// stands, and which poll a reading answers. The link tells what it sends and hears, the device what it wants and gets;
/// nothing is sent from here. Times are milliseconds since the epoch.
class LoggerConversation
{
public:
    /// An answer that comes longer after its poll would be recorded with a time that is far from true.
    static constexpr qint64 longestReplyMs = 10000;

    struct Poll
    {
        bool isForRecord = false;
        qint64 timeMs = 0;
    };
    /// A reading with the time at which it stands: that of the poll that it answers, or for one that was only to be
    /// shown that of the latest poll for a record before it.
    struct TimedReading
    {
        qint64 timeMs;
        double value1;
        double value2;
        bool isForRecord; ///< answers a poll for a record, and arrived while recording was on
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
    /// The readings, each once, of which it has become clear since the last call what they answer.
    std::vector<TimedReading> takeTimed();
    /// The readings of which it is not clear yet, as they would be taken if nothing else came.
    std::vector<TimedReading> heldReadings() const;

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
    /// What had arrived before may still be handed to answer(). @p mayStillAnswer: what was asked may be answered on
    /// the next connection, as it may on a serial port.
    void linkClosed(bool mayStillAnswer);

    /// Whether a line of the logger's is still to come: it has not answered, or not in full, something that was sent on
    /// the connection that stands.
    bool owesReply() const { return m_owedReplies > 0; }

private:
    /// Readings that answer nothing sent over a link: handed in without one, or more than were asked for.
    enum class Unasked { Recorded, RecordedAfterTheFirst, NotRecorded };

    struct SentPoll
    {
        Poll poll;
        qint64 readingMs; ///< where its reading stands
    };
    /// The readings of one reply; times and purpose follow from its poll.
    using Answer = std::vector<TimedReading>;

    void hold(const QVector<Reading> &readings, bool isRecording);
    void takeUnasked(const QVector<Reading> &readings, bool isRecording);
    void take(const Answer &answer, const SentPoll &sent);
    void giveUpPollsOlderThan(qint64 timeMs);
    void dropPollsTooMany();
    void takeRepliesTooMany();
    void leaveClosedConnection();

    std::optional<Poll> m_due;
    QVector<SentPoll> m_unanswered; ///< sent on this connection, oldest first
    QVector<Answer> m_held;         ///< too few yet to tell which of the unanswered polls they answer
    std::vector<TimedReading> m_timed;
    qint64 m_recordTimeMs;
    Unasked m_unasked = Unasked::Recorded;
    qint64 m_settledMs = 0; ///< where the latest reading stands whose poll is known
    int m_lateReplies = 0;  ///< polls for a record given up lately; their answers may come all the same
    qint64 m_givenUpMs = 0; ///< the time of the latest of them
    int m_owedBefore = 0;   ///< replies that the logger may still owe to an earlier connection
    qint64 m_leftMs = 0;    ///< the latest poll for a record on that connection
    int m_owedReplies = 0;
    QVector<int> m_repliesHeard; ///< the number of readings in each reply of what arrived last
    QByteArray m_lineBegun;      ///< of a reply that is owed
    bool m_isOpening = false;
    bool m_isClosed = false;
    bool m_mayStillAnswer = false; ///< after the closing
};
