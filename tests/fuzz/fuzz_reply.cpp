#include "FuzzGround.h"
#include "FuzzInput.h"

#include "device/LoggerConversation.h"
#include "device/ReplyGuard.h"
#include "device/ReplyParser.h"
#include "device/WireText.h"

#include <QSet>

#include <cmath>

namespace {

qint64 theTime = 0;

qint64 readTime()
{
    return theTime;
}

/// A link, its logger and the device behind them, all as the fuzzer wants them to act: what arrives goes through guard,
/// conversation and parser as it does behind a socket.
class Station
{
public:
    explicit Station(FuzzInput &input) : m_input(input) { m_recordTimes.insert(theTime); }

    void act();
    void finish();

private:
    void ask(bool isForRecord);
    void send(const QByteArray &command);
    void hear(const QByteArray &bytes);
    void close(bool mayStillAnswer);
    int longestLine(const QByteArray &bytes);
    void parse(const QByteArray &bytes);
    void takeTimed();

    FuzzInput &m_input;
    ReplyGuard m_guard{readTime};
    LoggerConversation m_conversation{theTime};
    QSet<qint64> m_recordTimes;
    bool m_isRecording = false;
    bool m_hasRecorded = false;
    int m_heardSincePoll = 0;
    int m_lineHeard = 0; ///< since the last line end
    qint64 m_answered = 0;
    qint64 m_timed = 0;
};

void Station::ask(bool isForRecord)
{
    theTime += 10 * m_input.byte();
    if (isForRecord)
        m_recordTimes.insert(theTime);
    m_conversation.ask({isForRecord, theTime});
}

void Station::send(const QByteArray &command)
{
    m_guard.pollSent();
    m_heardSincePoll = 0;
    m_conversation.linkSent(command);
    require(m_conversation.owesReply(), "what was sent is to be answered");
}

void Station::hear(const QByteArray &bytes)
{
    if (!m_guard.admits(bytes)) {
        close(false);
        require(!m_guard.admits({}), "nothing is admitted before the next poll");
        return;
    }
    m_heardSincePoll += int(bytes.size());
    require(m_heardSincePoll <= replyBounds::bytesPerPoll, "a poll is answered within its bounds");
    LoggerConversation slowly = m_conversation;
    m_conversation.linkHeard(bytes);
    for (const char byte : bytes)
        slowly.linkHeard(QByteArray(1, byte));
    if (longestLine(bytes) < replyBounds::fieldLength)
        require(m_conversation.owesReply() == slowly.owesReply(), "what is owed does not depend on the pieces");
    parse(bytes);
}

/// With what came of it before. One that is too long for a reply counts for nothing, or its beginning does.
int Station::longestLine(const QByteArray &bytes)
{
    int longest = 0;
    for (const char byte : bytes) {
        m_lineHeard = byte == '\n' || byte == '\r' ? 0 : m_lineHeard + 1;
        longest = qMax(longest, m_lineHeard);
    }
    return longest;
}

void Station::parse(const QByteArray &bytes)
{
    const QString reply = wireText(bytes).remove(QLatin1Char(' ')).remove(QLatin1String("ATDC"));
    const QVector<Reading> readings = parseReply(reply);
    const QStringList lines = reply.split(QLatin1Char('\n'));
    int withComma = 0;
    for (const QString &line : lines)
        withComma += line.contains(QLatin1Char(',')) ? 1 : 0;
    require(readings.size() == withComma && withComma <= replyBounds::linesPerPoll, "a line of fields is a reading");
    for (const Reading &reading : readings) {
        for (const ChannelReading &channel : {reading.channel1, reading.channel2}) {
            require(std::isfinite(channel.value), "a value is a number");
            require(channel.ownText.isEmpty() ||
                        (isNoValue(channel.value) && channel.ownText.contains(QLatin1String("----"))),
                    "a text of its own stands for no value");
            require(!channel.text().isEmpty() && channel.text().size() <= replyBounds::fieldLength,
                    "what is shown has its bounds");
        }
    }
    m_answered += readings.size();
    m_hasRecorded = m_hasRecorded || (m_isRecording && !readings.isEmpty());
    m_conversation.answer(readings, m_isRecording);
    takeTimed();
}

void Station::close(bool mayStillAnswer)
{
    m_conversation.linkClosed(mayStillAnswer);
    require(!m_conversation.owesReply(), "a closed link owes nothing");
}

void Station::takeTimed()
{
    const std::vector<LoggerConversation::TimedReading> timed = m_conversation.takeTimed();
    m_timed += qint64(timed.size());
    require(m_timed <= m_answered, "a reading is taken once");
    for (const LoggerConversation::TimedReading &reading : timed) {
        require(m_recordTimes.contains(reading.timeMs), "a reading stands at the time of a poll for a record");
        require(!reading.isForRecord || m_hasRecorded, "nothing is recorded while recording is off");
    }
    require(m_conversation.takeTimed().empty(), "what is taken is gone");
}

void Station::act()
{
    const int step = m_input.byte();
    switch (step % 10) {
    case 0:
    case 1:
        return ask(step % 10 == 0);
    case 2:
        return send(step < 200 ? QByteArrayLiteral("ATDC\r\n") : QByteArrayLiteral("ATBMIN1 1.00\r\n"));
    case 3:
        m_conversation.linkOpening();
        return;
    case 4:
        return close(step < 100);
    case 5:
        m_isRecording = !m_isRecording;
        m_conversation.settle();
        return takeTimed();
    case 6:
        m_conversation.forgetPollNotSent();
        return;
    case 7: {
        const auto due = m_conversation.takeDueRecordPoll();
        require(!due || (due->isForRecord && m_recordTimes.contains(due->timeMs)), "what is due was asked for");
        return;
    }
    default:
        return hear(m_input.bytes(step % 10 == 8 ? step / 4 : int(m_input.number(2) % 20000)));
    }
}

void Station::finish()
{
    m_conversation.settle();
    takeTimed();
    const auto unanswered = m_conversation.unansweredRecordPoll();
    require(!unanswered || m_conversation.isAnyPollUnanswered(), "a poll for a record is a poll");
    require(!unanswered || m_recordTimes.contains(unanswered->timeMs), "what is unanswered was asked for");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    theTime = 1700000000000;
    FuzzInput input(data, size);
    Station station(input);
    while (!input.atEnd())
        station.act();
    station.finish();
    return 0;
}
