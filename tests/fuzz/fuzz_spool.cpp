#include "FuzzGround.h"
#include "FuzzInput.h"

#include "store/SpoolFile.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

using State = SpoolFile::State;

constexpr int commits = 6;
constexpr int rowsOfACommit = 12;

QString path()
{
    return fuzzFile("Kitchen.dat.spool");
}

QString logPath()
{
    return path() + QLatin1String("-wal");
}

bool operator==(const PendingRow &a, const PendingRow &b)
{
    return a.serial == b.serial && a.channel1 == b.channel1 && a.channel2 == b.channel2 && a.time == b.time &&
           a.number == b.number;
}

bool areEqual(const std::vector<PendingRow> &a, const std::vector<PendingRow> &b)
{
    return std::equal(a.cbegin(), a.cend(), b.cbegin(), b.cend(), [](const auto &x, const auto &y) { return x == y; });
}

/// A spool as a kill leaves it, and how long its log was after each commit.
struct Whole
{
    QByteArray file;
    QByteArray log;
    std::vector<PendingRow> rows;
    std::vector<int> logSizes;
};

Whole makeWhole()
{
    removeFuzzFiles();
    Whole whole;
    SpoolFile spool(path());
    for (int commit = 0; commit < commits; ++commit) {
        SpoolFile::Change change;
        for (int i = 0; i < rowsOfACommit; ++i) {
            const int number = commit * rowsOfACommit + i + 1;
            const QString serial = QStringLiteral("TEMPERATURE %1").arg(number % 5);
            change.rows.push_back(
                {serial, number / 4.0, number % 3 == 0 ? noValue : 50.5, quint32(1700000000 + number), number});
        }
        change.storedUpTo = commit;
        require(spool.write(change), "the spool is written");
        whole.rows.insert(whole.rows.end(), change.rows.cbegin(), change.rows.cend());
        whole.logSizes.push_back(int(contentOf(logPath()).size()));
    }
    whole.file = contentOf(path());
    whole.log = contentOf(logPath());
    return whole;
}

/// How many rows are in what the log holds up to the first byte that differs.
size_t rowsBefore(const Whole &whole, const QByteArray &log)
{
    const auto differs = std::mismatch(whole.log.cbegin(), whole.log.cend(), log.cbegin(), log.cend()).first;
    const auto same = int(differs - whole.log.cbegin());
    return size_t(
               std::count_if(whole.logSizes.cbegin(), whole.logSizes.cend(), [same](int end) { return end <= same; })) *
           rowsOfACommit;
}

void checkRows(const std::vector<PendingRow> &rows)
{
    const bool inOrder = std::is_sorted(rows.cbegin(), rows.cend(),
                                        [](const PendingRow &a, const PendingRow &b) { return a.number < b.number; });
    const bool isTwice = std::adjacent_find(rows.cbegin(), rows.cend(), [](const PendingRow &a, const PendingRow &b) {
                             return a.number == b.number;
                         }) != rows.cend();
    require(inOrder && !isTwice, "each row stands once, in its order");
}

/// What could be read survives the file that is set aside; a whole one takes more.
void checkWriting(SpoolFile &spool, const SpoolFile::Content &content)
{
    SpoolFile::Change change;
    std::vector<PendingRow> expected = content.rows;
    if (content.state == State::Damaged) {
        const QByteArray file = contentOf(path());
        const QString aside = SpoolFile::setAside(path());
        require(!aside.isEmpty() && contentOf(aside) == file, "a damaged file is set aside as it is");
        change.rows = content.rows;
    }
    const qint64 last = expected.empty() ? 0 : expected.back().number;
    if (last < std::numeric_limits<qint64>::max()) {
        change.rows.push_back({QStringLiteral("new"), 1.5, noValue, 1800000000, last + 1});
        expected.push_back(change.rows.back());
    }
    if (!spool.write(change))
        return require(content.state != State::Damaged && content.state != State::Missing, "a new spool is written");
    spool.close();
    const SpoolFile::Content again = spool.read();
    if (content.state == State::Damaged)
        require(again.state == State::Whole, "a new spool is whole");
    require(again.state != State::Whole || areEqual(again.rows, expected), "what was written is read alike");
}

} // namespace

/// A spool of any content, or one whose file and log were damaged.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Whole whole = makeWhole();
    removeFuzzFiles();
    FuzzInput input(data, size);
    const int kind = input.byte() % 4;
    QByteArray file = whole.file;
    QByteArray log = whole.log;
    if (kind == 0) {
        log = input.bytes(int(input.number(2)));
        file = input.rest();
    } else if (kind == 1) {
        file = damaged(file, input);
    } else {
        log = damaged(log, input);
    }
    writeFile(path(), file);
    if (!log.isEmpty())
        writeFile(logPath(), log);

    SpoolFile spool(path());
    const SpoolFile::Content content = spool.read();
    require(contentOf(path()) == file && contentOf(logPath()) == log, "reading changes nothing");
    require(content.state != State::Missing, "a file that is there is not missing");
    checkRows(content.rows);
    if (kind >= 2) {
        const size_t sure = rowsBefore(whole, log);
        require(content.state == State::Whole, "a torn log is no damage");
        require(content.rows.size() >= sure && content.rows.size() <= whole.rows.size() &&
                    areEqual(content.rows, {whole.rows.cbegin(), whole.rows.cbegin() + qint64(content.rows.size())}),
                "everything before the tear is taken");
    }
    checkWriting(spool, content);
    return 0;
}
