#include "device/ReplyGuard.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr qint64 secondMs = 1000;

int lineCount(const QByteArray &bytes)
{
    return int(bytes.count('\n')) + (bytes.endsWith('\n') ? 0 : 1);
}

int longestField(const QByteArray &bytes)
{
    const auto isSeparator = [](char c) {
        return c == ',' || c == '\n';
    };
    std::ptrdiff_t longest = 0;
    for (auto begin = bytes.cbegin(); begin != bytes.cend();) {
        const auto end = std::find_if(begin, bytes.cend(), isSeparator);
        longest = std::max<std::ptrdiff_t>(longest, end - begin);
        begin = end == bytes.cend() ? end : end + 1;
    }
    return int(longest);
}

} // namespace

ReplyGuard::ReplyGuard(Clock clock) : m_clock(clock) {}

qint64 ReplyGuard::steadyClock()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

void ReplyGuard::pollSent()
{
    if (hasBehaved())
        m_hasComplained = false;
    m_excess.clear();
    m_linesOfPoll = 0;
    m_bytesOfPoll = 0;
}

bool ReplyGuard::admits(const QByteArray &bytes)
{
    if (m_excess.isEmpty())
        m_excess = excessIn(bytes);
    if (!m_excess.isEmpty())
        m_behavesSince.reset();
    else if (!m_behavesSince)
        m_behavesSince = m_clock();
    return m_excess.isEmpty();
}

bool ReplyGuard::hasBehaved() const
{
    return m_behavesSince && m_clock() - *m_behavesSince >= secondMs;
}

QString ReplyGuard::excessIn(const QByteArray &bytes)
{
    using namespace replyBounds;
    const qint64 now = m_clock();
    if (now - m_secondBegan >= secondMs) {
        m_secondBegan = now;
        m_bytesOfSecond = 0;
    }
    m_bytesOfSecond += int(bytes.size());
    m_bytesOfPoll += int(bytes.size());
    // Before the bytes are looked at one by one.
    if (m_bytesOfPoll > bytesPerPoll)
        return QStringLiteral("more than %1 bytes for one poll").arg(bytesPerPoll);
    if (m_bytesOfSecond > bytesPerSecond)
        return QStringLiteral("more than %1 bytes within a second").arg(bytesPerSecond);
    m_linesOfPoll += lineCount(bytes);
    if (m_linesOfPoll > linesPerPoll)
        return QStringLiteral("more than %1 lines for one poll").arg(linesPerPoll);
    if (longestField(bytes) > fieldLength)
        return QStringLiteral("a field of more than %1 characters").arg(fieldLength);
    return {};
}

QString ReplyGuard::takeComplaint()
{
    return std::exchange(m_hasComplained, true) ? QString() : m_excess;
}
