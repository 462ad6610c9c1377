#include "FuzzGround.h"
#include "FuzzInput.h"

#include "journal/JournalFile.h"
#include "journal/JournalReader.h"
#include "journal/JournalText.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString path()
{
    return fuzzFile("Kitchen.events");
}

JournalEvent event(JournalKind kind, int number)
{
    JournalEvent made{kind};
    made.key = QStringLiteral("TEMPERATURE %1").arg(number);
    made.channel = 1 + number % 2;
    made.value = number / 4.0;
    made.oldText = QStringLiteral("old");
    made.text = QString::fromUtf8("Kühlraum");
    return made;
}

struct Whole
{
    QByteArray file;
    QList<JournalEntry> entries;
};

QList<JournalEntry> entriesNow(JournalVerdict *verdict = nullptr)
{
    QList<JournalEntry> entries;
    const JournalVerdict read = readJournal(path(), [&entries](const JournalEntry &entry) { entries << entry; });
    if (verdict)
        *verdict = read;
    return entries;
}

Whole makeWhole()
{
    removeFuzzFiles();
    {
        JournalFile journal(path(), QStringLiteral("anna"));
        require(journal.open().error.isEmpty(), "a journal is made");
        QList<JournalEvent> events;
        for (int kind = 0; kind <= int(JournalKind::EntriesDropped); ++kind)
            events << event(JournalKind(kind), kind);
        require(journal.append(events), "a journal is written");
    }
    return {contentOf(path()), entriesNow()};
}

bool isPrefix(const QList<JournalEntry> &entries, const QList<JournalEntry> &of)
{
    const auto isSame = [](const JournalEntry &a, const JournalEntry &b) {
        return a.fields == b.fields && a.hash == b.hash;
    };
    return entries.size() <= of.size() && std::equal(entries.cbegin(), entries.cend(), of.cbegin(), isSame);
}

bool isChain(const QList<JournalEntry> &entries)
{
    QByteArray head = noJournalHash();
    for (const JournalEntry &entry : entries) {
        if (entry.hash != journalHash(head, entry))
            return false;
        head = entry.hash;
    }
    return true;
}

void checkTexts(const JournalEntry &entry)
{
    const QString line = plainLine(entry);
    require(std::all_of(line.cbegin(), line.cend(), [](QChar c) { return c.isPrint(); }), "an entry is one plain line");
    const QByteArray json = jsonLine(entry);
    require(!json.contains('\n'), "an object is one line");
    const QJsonDocument document = QJsonDocument::fromJson(json);
    require(document.isObject() && document.object().size() == 11, "an entry is an object of eleven names");
}

void checkVerdict(const JournalVerdict &verdict, const QList<JournalEntry> &entries)
{
    require(verdict.entries == entries.size(), "each entry is handed out once");
    for (const JournalEntry &entry : entries)
        checkTexts(entry);
    require(verdict.state != JournalVerdict::Unreadable || !verdict.reason.isEmpty(), "a reason is told");
    if (verdict.state == JournalVerdict::Unreadable)
        return;
    require(verdict.head == (entries.isEmpty() ? noJournalHash() : entries.last().hash), "the head is the last hash");
    require(verdict.state != JournalVerdict::Whole || isChain(entries), "the chain of a whole journal holds");
}

/// The next station writes on behind what it finds, or sets it aside as it is.
void checkWriting(const QByteArray &content, const JournalVerdict &before)
{
    JournalFile::Opening opening;
    {
        JournalFile journal(path(), QStringLiteral("anna"));
        opening = journal.open();
        require(opening.error.isEmpty() == journal.isOpen(), "a journal is open, or a reason is told");
        if (!journal.isOpen() || !journal.append({event(JournalKind::ProgramEnded, 1)}))
            return;
    }
    require(opening.setAside.isEmpty() || contentOf(opening.setAside) == content, "what is no journal stays as it is");
    const JournalVerdict after = readJournal(path());
    const bool wasWhole = before.isWhole() || !opening.setAside.isEmpty() || content.isEmpty();
    require(after.isWhole() == wasWhole, "a journal is written on as it was found");
    if (before.isWhole())
        require(after.entries == before.entries + 1, "the entry is added");
}

} // namespace

/// A journal of any content, or one that somebody has changed.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Whole whole = makeWhole();
    removeFuzzFiles();
    FuzzInput input(data, size);
    const bool isRaw = input.byte() % 4 == 0;
    const QByteArray content = isRaw ? input.rest() : damaged(whole.file, input);
    writeFile(path(), content);

    JournalVerdict verdict;
    const QList<JournalEntry> entries = entriesNow(&verdict);
    require(contentOf(path()) == content, "reading changes nothing");
    checkVerdict(verdict, entries);
    if (!isRaw && verdict.isWhole())
        require(isPrefix(entries, whole.entries), "an entry that was changed is noticed");
    checkWriting(content, verdict);
    return 0;
}
