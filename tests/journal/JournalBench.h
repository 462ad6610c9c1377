#pragma once

#include "journal/JournalEntry.h"

#include <QList>
#include <QTemporaryDir>

/// A folder for a journal, and hands that reach into its file as somebody with SQLite at hand would.
class JournalBench
{
public:
    QString folder() const { return m_folder.path(); }
    QString path() const { return m_folder.filePath(QStringLiteral("Kitchen.events")); }
    /// Writes the events into the journal, all of them in one commit.
    bool write(const QList<JournalEvent> &events) const;
    /// Runs statements on the file behind the journal's back.
    bool run(const QStringList &statements) const;
    QList<JournalEntry> entries() const;
    QStringList kinds() const;

private:
    QTemporaryDir m_folder;
};

JournalEvent eventOf(JournalKind kind, const QString &text = QStringLiteral("text"));
/// One event of every kind, in their order.
QList<JournalEvent> everyKind();
