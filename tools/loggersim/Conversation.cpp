#include "loggersim/Conversation.h"
#include "loggersim/SimLogger.h"

#include <QIODevice>
#include <utility>

namespace loggersim {

namespace {

constexpr int commandMax = 4096;
constexpr int repliesMax = 64;
/// A station that does not read gets no more than this.
constexpr qint64 unreadMax = 4 * 1024 * 1024;
constexpr int floodStepMs = 20;

} // namespace

Conversation::Conversation(QIODevice *wire, SimLogger *logger, QObject *parent)
    : QObject(parent), m_wire(wire), m_logger(logger)
{
    m_pause.setSingleShot(true);
    m_pause.setTimerType(Qt::PreciseTimer);
    m_flood.setInterval(floodStepMs);
    connect(&m_pause, &QTimer::timeout, this, &Conversation::slotAdvance);
    connect(&m_flood, &QTimer::timeout, this, &Conversation::slotFlood);
    connect(m_wire, &QIODevice::readyRead, this, &Conversation::slotRead);
    connect(m_wire, &QIODevice::bytesWritten, this, &Conversation::slotBytesWritten);
    connect(m_logger, &SimLogger::faultChanged, this, &Conversation::slotFaultChanged);
    slotFaultChanged();
}

void Conversation::slotRead()
{
    if (m_logger->isDeaf() || !m_wire->isOpen())
        return;
    m_input += m_wire->readAll();
    for (int end = m_input.indexOf('\n'); end >= 0; end = m_input.indexOf('\n')) {
        take(m_input.left(end + 1));
        m_input.remove(0, end + 1);
    }
    if (m_input.size() > commandMax)
        m_input.clear();
    slotAdvance();
}

void Conversation::take(const QByteArray &command)
{
    if (m_replies.size() >= repliesMax || m_wire->bytesToWrite() > unreadMax)
        return;
    if (const auto reply = m_logger->answer(command))
        m_replies.append(*reply);
}

void Conversation::slotAdvance()
{
    while (!m_replies.isEmpty() && !m_pause.isActive()) {
        Reply &reply = m_replies.first();
        if (reply.delayMs > 0) {
            m_pause.start(std::exchange(reply.delayMs, 0));
            return;
        }
        const QByteArray piece = reply.pieces.takeFirst();
        if (reply.pieces.isEmpty()) {
            m_marks.append(
                Mark{m_given + piece.size(), reply.isReading, reply.values, reply.polledMs, reply.closeAfter});
            m_replies.removeFirst();
        } else {
            reply.delayMs = reply.pauseMs;
        }
        write(piece);
    }
}

void Conversation::write(const QByteArray &bytes)
{
    m_given += bytes.size();
    if (m_wire->isOpen())
        m_wire->write(bytes);
}

void Conversation::slotBytesWritten(qint64 count)
{
    m_written += count;
    while (!m_marks.isEmpty() && m_marks.first().end <= m_written) {
        const Mark mark = m_marks.takeFirst();
        if (mark.isReading)
            m_logger->countServed(mark.values, mark.polledMs);
        if (mark.closeAfter)
            emit finished();
    }
}

void Conversation::slotFaultChanged()
{
    m_flood.stop();
    if (m_logger->suffersFrom(FaultKind::Flood)) {
        m_flood.start();
        slotFlood();
    }
    m_pause.stop();
    if (m_logger->isDeaf()) {
        m_input.clear();
        m_replies.clear();
        return;
    }
    hurry();
    slotRead();
}

void Conversation::hurry()
{
    for (Reply &reply : m_replies) {
        reply.delayMs = 0;
        reply.pauseMs = 0;
    }
}

void Conversation::slotFlood()
{
    if (m_wire->bytesToWrite() > 0)
        return;
    const int size = m_logger->fault().number * 1024 / 1000 * floodStepMs;
    QByteArray chunk;
    while (chunk.size() < size)
        chunk += m_logger->unaskedReading();
    write(chunk);
}

} // namespace loggersim
