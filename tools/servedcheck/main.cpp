// Tells whether a recording made every second holds what the loggers served: servedcheck SERVED ROWS REFERENCE
// SERVED is what loggersim --served writes. ROWS has one line a row that is no gap: key and Unix second, separated by a
// tab. REFERENCE is the key of a network logger that has answered every poll.
// Prints a table, and each second where something is amiss to the standard error. 0: nothing was lost or doubled, 1:
// something was, 2: there is nothing to compare.

#include "servedcheck/ServedCheck.h"

#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <optional>

using namespace servedcheck;

namespace {

/// The lines of a file, each cut at its tabs, as far as they have so many fields.
std::optional<QList<QByteArrayList>> readTable(const QString &path, int fields)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        QTextStream(stderr) << "servedcheck: cannot read " << path << ": " << file.errorString() << "\n";
        return std::nullopt;
    }
    QList<QByteArrayList> lines;
    while (!file.atEnd()) {
        const QByteArrayList line = file.readLine().trimmed().split('\t');
        if (line.size() == fields)
            lines.append(line);
    }
    return lines;
}

QString line(const QString &key, const QStringList &numbers)
{
    QString text = key.leftJustified(14);
    for (const QString &number : numbers)
        text += number.rightJustified(11);
    return text + QLatin1Char('\n');
}

QString lineOf(const QString &key, const Tally &tally)
{
    QStringList numbers{QString::number(tally.answers), QString::number(tally.recorded)};
    for (const auto *seconds : {&tally.lost, &tally.extra, &tally.undecided})
        numbers.append(QString::number(seconds->size()));
    return line(key, numbers);
}

QString detailsOf(const QString &key, const QString &what, const std::vector<qint64> &seconds)
{
    QString text;
    for (const qint64 second : seconds)
        text += key + QLatin1Char(' ') + what + QLatin1Char(' ') +
                QDateTime::fromSecsSinceEpoch(second).toString(Qt::ISODate) + QLatin1Char('\n');
    return text;
}

void add(Tally &sum, const Tally &tally)
{
    sum.answers += tally.answers;
    sum.recorded += tally.recorded;
    sum.lost.insert(sum.lost.end(), tally.lost.begin(), tally.lost.end());
    sum.extra.insert(sum.extra.end(), tally.extra.begin(), tally.extra.end());
    sum.undecided.insert(sum.undecided.end(), tally.undecided.begin(), tally.undecided.end());
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 4) {
        QTextStream(stderr) << "usage: servedcheck SERVED ROWS REFERENCE\n";
        return 2;
    }
    const auto served = readTable(QFile::decodeName(argv[1]), 3);
    const auto rows = readTable(QFile::decodeName(argv[2]), 2);
    if (!served || !rows)
        return 2;
    ServedCheck check;
    for (const QByteArrayList &fields : *served)
        check.addPoll(QString::fromUtf8(fields.at(0)), fields.at(2).toLongLong());
    for (const QByteArrayList &fields : *rows)
        check.addRow(QString::fromUtf8(fields.at(0)), fields.at(1).toLongLong());

    const QString reference = QString::fromLocal8Bit(argv[3]);
    const std::map<QString, Tally> tallies = check.compare(reference);
    QTextStream out(stdout);
    out << line(QStringLiteral("key"), {QStringLiteral("answered"), QStringLiteral("recorded"), QStringLiteral("lost"),
                                        QStringLiteral("extra"), QStringLiteral("undecided")});
    Tally all;
    QString details;
    for (const auto &[key, tally] : tallies) {
        out << lineOf(key, tally);
        add(all, tally);
        details += detailsOf(key, QStringLiteral("lost"), tally.lost) +
                   detailsOf(key, QStringLiteral("extra"), tally.extra) +
                   detailsOf(key, QStringLiteral("undecided"), tally.undecided);
    }
    out << lineOf(QStringLiteral("all"), all);
    out << "refreshes of the display: " << check.refreshes(reference) << "\n";
    QTextStream(stderr) << details;
    if (all.recorded == 0)
        return 2;
    return all.lost.empty() && all.extra.empty() ? 0 : 1;
}
