#pragma once

#include "loggersim/Reply.h"

#include <QList>
#include <QObject>
#include <QTimer>

class QIODevice;

namespace loggersim {

class SimLogger;

/// The talk of a logger with one station over one wire: cuts what arrives into commands, writes the answers with
/// their pauses and tells the logger what was served. All its buffers are bounded.
class Conversation : public QObject
{
    Q_OBJECT

public:
    /// Neither @p wire nor @p logger is owned; both must outlive the conversation.
    Conversation(QIODevice *wire, SimLogger *logger, QObject *parent);

signals:
    /// A reply after which the logger closes the connection has been written.
    void finished();

private:
    struct Mark
    {
        qint64 end = 0; ///< bytes written once the reply is out
        bool isReading = false;
        QByteArray values;
        qint64 polledMs = 0;
        bool closeAfter = false;
    };

    void slotRead();
    void slotAdvance();
    void slotBytesWritten(qint64 count);
    void slotFaultChanged();
    void slotFlood();
    void take(const QByteArray &command);
    void write(const QByteArray &bytes);
    /// What an earlier fault still holds back goes out at once.
    void hurry();

    QIODevice *m_wire;
    SimLogger *m_logger;
    QByteArray m_input;
    QList<Reply> m_replies;
    QList<Mark> m_marks;
    QTimer m_pause;
    QTimer m_flood;
    qint64 m_given = 0;   ///< bytes handed to the wire
    qint64 m_written = 0; ///< bytes of them that are out
};

} // namespace loggersim
