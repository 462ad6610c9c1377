#include "journal/EventJournal.h"

#include "journal/JournalWriter.h"

EventJournal::EventJournal(QObject *parent) : QObject(parent), m_writer(std::make_shared<JournalWriter>(this)) {}

EventJournal::~EventJournal()
{
    close();
}

void EventJournal::open(const QString &path)
{
    m_writer->start(path);
}

void EventJournal::append(JournalEvent event)
{
    if (!event.time.isValid())
        event.time = QDateTime::currentDateTime();
    m_writer->append(event);
}

void EventJournal::close()
{
    m_writer->finish();
}

QByteArray EventJournal::head() const
{
    return m_writer->head();
}

qint64 EventJournal::entryCount() const
{
    return m_writer->entryCount();
}
