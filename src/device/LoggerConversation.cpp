#include "device/LoggerConversation.h"

#include "device/ReplyParser.h"

#include <QList>
#include <algorithm>
#include <numeric>
#include <utility>

namespace {

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
        if (poll.timeMs - m_givenUpMs > longestReplyMs)
            m_lateReplies = 0;
        if (poll.timeMs - m_leftMs > longestReplyMs)
            m_owedBefore = 0;
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
    if (m_unanswered.isEmpty() && m_lateReplies == 0) {
        takeUnasked(readings, isRecording);
    } else {
        if (!readings.isEmpty())
            hold(readings, isRecording);
        else if (m_held.size() < m_unanswered.size())
            m_unanswered.remove(m_held.size()); // with something that is no reading
        if (m_held.size() >= m_unanswered.size())
            settle();
    }
    if (m_isClosed)
        leaveClosedConnection();
}

void LoggerConversation::takeUnasked(const QVector<Reading> &readings, bool isRecording)
{
    for (const Reading &reading : readings) {
        const bool isForRecord = isRecording && m_unasked == Unasked::Recorded;
        m_timed.push_back({m_recordTimeMs, reading.channel1.value, reading.channel2.value, isForRecord});
        if (m_unasked == Unasked::RecordedAfterTheFirst)
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
        for (int i = 0; i < size; ++i, ++reading)
            answer.push_back({0, reading->channel1.value, reading->channel2.value, isRecording});
        m_held.append(answer);
    }
}

/// Answers come in the order of the polls.
void LoggerConversation::settle()
{
    if (m_held.isEmpty())
        return;
    dropPollsTooMany();
    takeRepliesTooMany();
    for (int i = 0; i < m_held.size(); ++i)
        take(m_held.at(i), m_unanswered.at(i));
    if (!m_unanswered.isEmpty())
        m_settledMs = m_unanswered.last().readingMs;
    m_held.clear();
    m_unanswered.clear();
}

void LoggerConversation::take(const Answer &answer, const SentPoll &sent)
{
    for (const TimedReading &held : answer)
        m_timed.push_back({sent.readingMs, held.value1, held.value2, held.isForRecord && sent.poll.isForRecord});
}

/// They come before the answers to the polls under way: from a logger that has hung what it was asked on an earlier
/// connection, from one that is slow the answers that were given up already, whose polls have lent their answers' times
/// to those before. What is left is one answer in several replies.
void LoggerConversation::takeRepliesTooMany()
{
    int tooMany = m_held.size() - m_unanswered.size();
    const int ofEarlier = std::min(tooMany, m_owedBefore);
    m_held.remove(0, ofEarlier);
    m_owedBefore -= ofEarlier;
    for (tooMany -= ofEarlier; tooMany > 0; --tooMany) {
        const Answer answer = m_held.takeFirst();
        if (m_lateReplies > 0) {
            --m_lateReplies;
            take(answer, {{true, m_settledMs}, m_settledMs});
        } else {
            take(answer, m_unanswered.isEmpty() ? SentPoll{{}, m_recordTimeMs} : m_unanswered.first());
        }
    }
}

/// Of the polls that got no answer those for display are the ones that nobody misses, then the oldest.
void LoggerConversation::dropPollsTooMany()
{
    while (m_unanswered.size() > m_held.size()) {
        const auto forDisplay = std::find_if(m_unanswered.begin(), m_unanswered.end(),
                                             [](const SentPoll &sent) { return !sent.poll.isForRecord; });
        if (forDisplay != m_unanswered.end()) {
            m_unanswered.erase(forDisplay);
            continue;
        }
        m_givenUpMs = m_unanswered.takeFirst().poll.timeMs;
        ++m_lateReplies;
    }
}

std::vector<LoggerConversation::TimedReading> LoggerConversation::takeTimed()
{
    return std::exchange(m_timed, {});
}

std::vector<LoggerConversation::TimedReading> LoggerConversation::heldReadings() const
{
    if (m_held.isEmpty())
        return {};
    LoggerConversation ended = *this;
    ended.m_timed.clear();
    ended.settle();
    return ended.takeTimed();
}

std::optional<LoggerConversation::Poll> LoggerConversation::takeDueRecordPoll()
{
    const std::optional<Poll> due = std::exchange(m_due, std::nullopt);
    return due && due->isForRecord ? due : std::nullopt;
}

std::optional<LoggerConversation::Poll> LoggerConversation::unansweredRecordPoll() const
{
    const auto latest = std::find_if(m_unanswered.crbegin(), m_unanswered.crend(),
                                     [](const SentPoll &sent) { return sent.poll.isForRecord; });
    return latest == m_unanswered.crend() ? std::nullopt : std::make_optional(latest->poll);
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
    // Or its answer would be taken for theirs.
    if (!poll.isForRecord)
        giveUpPollsOlderThan(poll.timeMs - longestReplyMs);
    m_unanswered.append({poll, poll.isForRecord ? poll.timeMs : m_recordTimeMs});
    m_unasked = Unasked::NotRecorded;
}

void LoggerConversation::giveUpPollsOlderThan(qint64 timeMs)
{
    if (!m_held.isEmpty())
        return;
    m_unanswered.erase(std::remove_if(m_unanswered.begin(), m_unanswered.end(),
                                      [timeMs](const SentPoll &sent) { return sent.poll.timeMs < timeMs; }),
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

void LoggerConversation::linkClosed(bool mayStillAnswer)
{
    m_due.reset();
    m_owedReplies = 0;
    m_lineBegun.clear();
    m_isOpening = false;
    m_isClosed = true;
    m_mayStillAnswer = mayStillAnswer;
}

void LoggerConversation::leaveClosedConnection()
{
    settle();
    m_owedBefore = m_mayStillAnswer ? m_owedBefore + m_unanswered.size() + m_lateReplies : 0;
    m_unanswered.clear();
    m_lateReplies = 0;
    m_leftMs = m_recordTimeMs;
    m_isClosed = false;
}
