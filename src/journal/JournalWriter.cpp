#include "journal/JournalWriter.h"

#include "journal/EventJournal.h"
#include "journal/JournalFile.h"
#include "journal/Logging.h"
#include "journal/OperatingSystemUser.h"

#include <QHash>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::seconds retryInterval{5};

// The disk of another computer may take for ever, and whoever closes a project waits in front of the window.
constexpr std::chrono::seconds longestFinish{2};

/// Writers left alone with their files, by the paths of those.
QHash<QString, std::shared_ptr<JournalWriter>> &writersLeft()
{
    static QHash<QString, std::shared_ptr<JournalWriter>> writers;
    return writers;
}

} // namespace

void JournalWriter::start(const QString &path)
{
    m_path = path;
    m_predecessor = writersLeft().take(path);
    m_hasNews = true; // also without an event the file is opened
    m_thread = std::thread([self = shared_from_this(), path] { self->run(path); });
}

void JournalWriter::append(const JournalEvent &event)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_waiting.size() < EventJournal::longestQueue)
        m_waiting.append(event);
    else
        ++m_dropped;
    m_hasNews = true;
    m_news.notify_one();
}

void JournalWriter::finish()
{
    if (!m_thread.joinable())
        return;
    bool hasEnded = false;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_isClosing = true;
        m_news.notify_one();
        hasEnded = m_end.wait_for(lock, longestFinish, [this] { return m_hasEnded; });
    }
    if (hasEnded) {
        m_thread.join();
        return;
    }
    qCWarning(lcJournal).noquote() << "[ERROR] EventJournal::close : the disk does not answer :" << m_path;
    {
        const std::lock_guard<std::mutex> lock(m_journalMutex);
        m_journal = nullptr;
    }
    writersLeft().insert(m_path, shared_from_this());
    m_thread.detach();
}

QByteArray JournalWriter::head() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_head;
}

qint64 JournalWriter::entryCount() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entryCount;
}

void JournalWriter::run(const QString &path)
{
    if (m_predecessor)
        m_predecessor->awaitEnd();
    m_predecessor.reset();
    {
        JournalFile file(path, operatingSystemUser());
        bool isWritten = true;
        for (bool isLast = false; !isLast;) {
            {
                std::unique_lock<std::mutex> lock(m_mutex);
                const auto isWoken = [this] {
                    return m_hasNews || m_isClosing;
                };
                if (isWritten)
                    m_news.wait(lock, isWoken);
                else
                    m_news.wait_for(lock, retryInterval, isWoken);
                m_hasNews = false;
                isLast = m_isClosing;
            }
            isWritten = (file.isOpen() || openFile(file)) && write(file);
        }
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_waiting.isEmpty() || m_dropped > 0)
        qCWarning(lcJournal).noquote() << "[ERROR] EventJournal::run :" << m_waiting.size() + m_dropped
                                       << "events could not be written in" << path;
    m_hasEnded = true;
    m_end.notify_all();
}

void JournalWriter::awaitEnd()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_end.wait(lock, [this] { return m_hasEnded; });
}

bool JournalWriter::openFile(JournalFile &file)
{
    const JournalFile::Opening opening = file.open();
    if (!opening.setAside.isEmpty())
        tell(&EventJournal::setAside, opening.setAside);
    if (!opening.error.isEmpty()) {
        tellFailure(opening.error);
        return false;
    }
    // Opened again after trouble, its last entry is this program's own.
    const bool isFirstTime = !std::exchange(m_wasOpened, true);
    if (isFirstTime && opening.uncleanSince.isValid())
        tell(&EventJournal::unclean, opening.uncleanSince);
    return true;
}

bool JournalWriter::write(JournalFile &file)
{
    const QList<JournalEvent> events = takeWaiting();
    if (!events.isEmpty() && !file.append(events)) {
        putBack(events);
        tellFailure(file.error());
        return false;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_head = file.head();
        m_entryCount = file.entryCount();
    }
    if (std::exchange(m_hasFailed, false))
        tell(&EventJournal::restored);
    return true;
}

void JournalWriter::tellFailure(const QString &reason)
{
    qCWarning(lcJournal).noquote() << "[ERROR] EventJournal :" << reason;
    if (!std::exchange(m_hasFailed, true))
        tell(&EventJournal::failed,
             QStringLiteral("The journal of events cannot be written. The recording goes on. %1").arg(reason));
}

template <typename... Parameters, typename... Arguments>
void JournalWriter::tell(void (EventJournal::*signal)(Parameters...), const Arguments &...arguments)
{
    const std::lock_guard<std::mutex> lock(m_journalMutex);
    if (m_journal)
        emit(m_journal->*signal)(arguments...);
}

/// The number of those that were dropped stands where they would.
QList<JournalEvent> JournalWriter::takeWaiting()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QList<JournalEvent> events = std::exchange(m_waiting, {});
    if (const qint64 dropped = std::exchange(m_dropped, 0)) {
        JournalEvent gap{JournalKind::EntriesDropped};
        gap.value = double(dropped);
        gap.time = QDateTime::currentDateTime();
        events.append(gap);
    }
    return events;
}

/// Without the note on those that were dropped, which is made anew.
void JournalWriter::putBack(const QList<JournalEvent> &events)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QList<JournalEvent> all = events;
    if (all.last().kind == JournalKind::EntriesDropped)
        m_dropped += qint64(*all.takeLast().value);
    m_waiting = all + m_waiting;
}
