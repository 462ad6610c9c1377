#include "device/LoggerConversation.h"

#include "device/ReplyParser.h"

#include <QList>
#include <algorithm>
#include <numeric>
#include <utility>

namespace {

/// A poll for display sent so long after one for a record is not held up by it: taken for the older one's, its answer
/// would be recorded with a time that is far from true.
constexpr qint64 longestReplyMs = 10000;
/// A line that goes on beyond this is no reply; its end counts for nothing.
constexpr int longestLine = 4096;

bool isPoll(const QByteArray &command)
{
    return !command.startsWith("ATB");
}

bool isEcho(const QByteArray &line)
{
    return line.contains("ATDC") || line.contains("ATCD");
}

/// The number of readings in each reply.
QVector<int> replySizes(const QByteArray &bytes)
{
    QVector<int> sizes;
    bool isNext = true;
    const QList<QByteArray> lines = bytes.split('\n');
    for (const QByteArray &line : lines) {
        isNext = isNext || isEcho(line);
        if (!line.contains(','))
            continue;
        if (isNext)
            sizes.append(0);
        ++sizes.last();
        isNext = false;
    }
    return sizes;
}

int lineEnd(const QByteArray &bytes, int from)
{
    const auto end = std::find_if(bytes.cbegin() + from, bytes.cend(), [](char c) { return c == '\n' || c == '\r'; });
    return static_cast<int>(end - bytes.cbegin());
}

} // namespace

void LoggerConversation::ask(const Poll &poll)
{
    if (m_isClosed)
        leaveClosedConnection();
    if (poll.isForRecord) {
        m_recordTimeMs = poll.timeMs;
        m_unasked = Unasked::Recorded;
        // A logger that has answered since the last one is awake: what it has left out it has lost.
        settle();
    } else if (!m_due || !m_due->isForRecord) {
        m_unasked = Unasked::RecordedAfterTheFirst;
    }
    if (poll.isForRecord || !m_due)
        m_due = poll;
}

void LoggerConversation::forgetPollNotSent()
{
    if (!m_isOpening)
        m_due.reset();
}

void LoggerConversation::answer(const QVector<Reading> &readings, bool isRecording)
{
    if (m_unanswered.isEmpty()) {
        takeUnasked(readings, isRecording);
    } else if (readings.isEmpty()) {
        m_unanswered.removeFirst(); // with something that is no reading
    } else {
        hold(readings, isRecording);
        if (m_held.size() >= m_unanswered.size())
            settle();
    }
    if (m_isClosed)
        leaveClosedConnection();
}

void LoggerConversation::takeUnasked(const QVector<Reading> &readings, bool isRecording)
{
    for (const Reading &reading : readings) {
        if (m_unasked == Unasked::Recorded && isRecording)
            m_recorded.append({m_recordTimeMs, reading.channel1.value, reading.channel2.value});
        else if (m_unasked == Unasked::RecordedAfterTheFirst)
            m_unasked = Unasked::Recorded;
    }
}

/// Every reply begins with its echo; other lines go on with the last one.
void LoggerConversation::hold(const QVector<Reading> &readings, bool isRecording)
{
    const bool isKnown = std::accumulate(m_repliesHeard.cbegin(), m_repliesHeard.cend(), 0) == readings.size();
    const QVector<int> sizes = isKnown ? m_repliesHeard : QVector<int>(1, static_cast<int>(readings.size()));
    auto reading = readings.cbegin();
    for (const int size : sizes) {
        Answer answer;
        for (int i = 0; i < size; ++i, ++reading) {
            if (isRecording)
                answer.append({reading->channel1.value, reading->channel2.value});
        }
        m_held.append(answer);
    }
}

/// Answers come in the order of the polls. What is too much comes before: from a logger that has hung it is the answers
/// to what it was asked on an earlier connection.
void LoggerConversation::settle()
{
    if (m_held.isEmpty())
        return;
    dropPollsTooMany();
    m_held.remove(0, m_held.size() - m_unanswered.size());
    for (int i = 0; i < m_held.size(); ++i) {
        const Poll &poll = m_unanswered.at(i);
        for (const Values &values : m_held.at(i)) {
            if (poll.isForRecord)
                m_recorded.append({poll.timeMs, values.channel1, values.channel2});
        }
    }
    m_held.clear();
    m_unanswered.clear();
}

/// Of the polls that got no answer those for display are the ones that nobody misses, then the oldest.
void LoggerConversation::dropPollsTooMany()
{
    while (m_unanswered.size() > m_held.size()) {
        const auto forDisplay =
            std::find_if(m_unanswered.begin(), m_unanswered.end(), [](const Poll &poll) { return !poll.isForRecord; });
        m_unanswered.erase(forDisplay == m_unanswered.end() ? m_unanswered.begin() : forDisplay);
    }
}

QVector<LoggerConversation::RecordedReading> LoggerConversation::takeRecorded()
{
    return std::exchange(m_recorded, {});
}

std::optional<LoggerConversation::Poll> LoggerConversation::takeDueRecordPoll()
{
    const std::optional<Poll> due = std::exchange(m_due, std::nullopt);
    return due && due->isForRecord ? due : std::nullopt;
}

std::optional<LoggerConversation::Poll> LoggerConversation::unansweredRecordPoll() const
{
    const auto latest =
        std::find_if(m_unanswered.crbegin(), m_unanswered.crend(), [](const Poll &poll) { return poll.isForRecord; });
    return latest == m_unanswered.crend() ? std::nullopt : std::make_optional(*latest);
}

void LoggerConversation::linkOpening()
{
    if (m_isClosed)
        leaveClosedConnection();
    m_isOpening = true;
}

void LoggerConversation::linkSent(const QByteArray &command)
{
    if (m_isClosed)
        leaveClosedConnection();
    m_isOpening = false;
    if (m_owedReplies++ == 0)
        m_lineBegun.clear();
    if (!isPoll(command))
        return;
    // A link that is opened for its own sake polls too; nobody has asked for a record then.
    const Poll poll = std::exchange(m_due, std::nullopt).value_or(Poll());
    if (!poll.isForRecord)
        giveUpPollsOlderThan(poll.timeMs - longestReplyMs);
    m_unanswered.append(poll);
    m_unasked = Unasked::NotRecorded;
}

void LoggerConversation::giveUpPollsOlderThan(qint64 timeMs)
{
    if (!m_held.isEmpty())
        return;
    m_unanswered.erase(std::remove_if(m_unanswered.begin(), m_unanswered.end(),
                                      [timeMs](const Poll &poll) { return poll.timeMs < timeMs; }),
                       m_unanswered.end());
}

/// A reply to a poll is a line with its echo, one to a command any line; neither is there before its line has ended.
void LoggerConversation::linkHeard(const QByteArray &bytes)
{
    m_repliesHeard = replySizes(bytes);
    int begin = 0;
    for (int end = lineEnd(bytes, begin); m_owedReplies > 0 && end < bytes.size(); end = lineEnd(bytes, begin)) {
        m_lineBegun += bytes.mid(begin, end - begin);
        if (isEcho(m_lineBegun) || (m_unanswered.isEmpty() && !m_lineBegun.isEmpty()))
            --m_owedReplies;
        m_lineBegun.clear();
        begin = end + 1;
    }
    if (m_owedReplies > 0 && m_lineBegun.size() < longestLine)
        m_lineBegun += bytes.mid(begin);
}

void LoggerConversation::linkClosed()
{
    m_due.reset();
    m_owedReplies = 0;
    m_lineBegun.clear();
    m_isOpening = false;
    m_isClosed = true;
}

void LoggerConversation::leaveClosedConnection()
{
    settle();
    m_unanswered.clear();
    m_isClosed = false;
}
