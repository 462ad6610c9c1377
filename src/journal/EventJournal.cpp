#include "journal/EventJournal.h"

#include "journal/JournalFile.h"
#include "journal/Logging.h"
#include "journal/OperatingSystemUser.h"

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::seconds retryInterval{5};

} // namespace

EventJournal::~EventJournal()
{
    close();
}

void EventJournal::open(const QString &path)
{
    m_hasNews = true; // also without an event the file is opened
    m_thread = std::thread([this, path] { run(path); });
}

void EventJournal::append(JournalEvent event)
{
    if (!event.time.isValid())
        event.time = QDateTime::currentDateTime();
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_waiting.size() < longestQueue)
        m_waiting.append(event);
    else
        ++m_dropped;
    m_hasNews = true;
    m_news.notify_one();
}

void EventJournal::close()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isClosing = true;
        m_news.notify_one();
    }
    m_thread.join();
}

QByteArray EventJournal::head() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_head;
}

qint64 EventJournal::entryCount() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entryCount;
}

void EventJournal::run(const QString &path)
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
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_waiting.isEmpty() || m_dropped > 0)
        qCWarning(lcJournal).noquote() << "[ERROR] EventJournal::run :" << m_waiting.size() + m_dropped
                                       << "events could not be written in" << path;
}

bool EventJournal::openFile(JournalFile &file)
{
    const JournalFile::Opening opening = file.open();
    if (!opening.setAside.isEmpty())
        emit setAside(opening.setAside);
    if (!opening.error.isEmpty()) {
        tellFailure(opening.error);
        return false;
    }
    // Opened again after trouble, its last entry is this program's own.
    const bool isFirstTime = !std::exchange(m_wasOpened, true);
    if (isFirstTime && opening.uncleanSince.isValid())
        emit unclean(opening.uncleanSince);
    return true;
}

bool EventJournal::write(JournalFile &file)
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
        emit restored();
    return true;
}

void EventJournal::tellFailure(const QString &reason)
{
    qCWarning(lcJournal).noquote() << "[ERROR] EventJournal :" << reason;
    if (!std::exchange(m_hasFailed, true))
        emit failed(QStringLiteral("The journal of events cannot be written. The recording goes on. %1").arg(reason));
}

/// The number of those that were dropped stands where they would.
QList<JournalEvent> EventJournal::takeWaiting()
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
void EventJournal::putBack(const QList<JournalEvent> &events)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QList<JournalEvent> all = events;
    if (all.last().kind == JournalKind::EntriesDropped)
        m_dropped += qint64(*all.takeLast().value);
    m_waiting = all + m_waiting;
}
