#include "app/JournalCommand.h"

#include "journal/JournalReader.h"
#include "journal/JournalText.h"

#include <cstdio>

namespace {

enum ExitCode { whole = 0, broken = 1, unreadable = 3 };

void printLine(const QByteArray &line)
{
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fputc('\n', stdout);
}

void tellVerdict(const JournalVerdict &verdict)
{
    const QByteArray head = "head " + verdict.head;
    if (verdict.isWhole())
        printLine("whole: " + QByteArray::number(verdict.entries) + " entries, " + head);
    else
        printLine("broken: entry " + QByteArray::number(verdict.brokenAt) + " does not follow from those before it; " +
                  QByteArray::number(verdict.entries) + " entries, " + head);
}

} // namespace

int JournalCommand::run() const
{
    const auto print = [this](const JournalEntry &entry) {
        printLine(action == PrintJson ? jsonLine(entry) : plainLine(entry).toUtf8());
    };
    const JournalVerdict verdict = action == Verify ? readJournal(file) : readJournal(file, print);
    if (verdict.state == JournalVerdict::Unreadable) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(file), qPrintable(verdict.reason));
        return unreadable;
    }
    if (action != Verify)
        return whole;
    tellVerdict(verdict);
    return verdict.isWhole() ? whole : broken;
}
