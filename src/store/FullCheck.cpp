#include "store/FullCheck.h"

#include "store/FileCheck.h"
#include "store/PageFile.h"
#include "store/ReadLock.h"
#include "store/RecordingLayout.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace {

qint64 rowsIn(PageFile &file, const SqlitePage::Page &page)
{
    qint64 rows = 0;
    for (int i = 0; i < page.cellCount(); ++i) {
        const std::optional<SqlitePage::Cell> cell = page.cell(i);
        if (cell && storedRow(cell->rowId, file.payload(page, *cell)))
            ++rows;
    }
    return rows;
}

qint64 countRows(PageFile &file, const std::function<void(int)> &progress)
{
    qint64 rows = 0;
    int told = -1;
    for (quint32 number = 1; number <= file.pagesPresent(); ++number) {
        const std::optional<SqlitePage::Page> page = file.page(number);
        if (page && page->kind() == SqlitePage::Kind::TableLeaf)
            rows += rowsIn(file, *page);
        const int percent = int(quint64(number) * 100 / file.pagesPresent());
        if (progress && percent != told)
            progress(told = percent);
    }
    return rows;
}

/// What SQLite finds, a line each; nothing when all is well.
QString findings(const QSqlDatabase &database)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("PRAGMA integrity_check")))
        return query.lastError().text();
    QStringList lines;
    while (query.next())
        lines << query.value(0).toString();
    return lines == QStringList(QStringLiteral("ok")) ? QString() : lines.join(QLatin1Char('\n'));
}

} // namespace

FullCheckResult checkWholeRecording(const QString &path, const std::function<void(int)> &progress)
{
    FullCheckResult result;
    if (!QFileInfo(path).isFile()) {
        result.finding = QStringLiteral("There is no such file.");
        return result;
    }
    PageFile file(path);
    const ReadLock lock(path);
    if (!lock.isHeld()) {
        result.finding = lock.error();
        return result;
    }
    const FileVerdict verdict = checkRecording(file);
    if (verdict == FileVerdict::Foreign || RecordingLayout::read(file).table == 0) {
        result.finding = QStringLiteral("This is no recording.");
        return result;
    }
    result.rows = countRows(file, progress);
    result.finding = findings(lock.connection());
    if (verdict == FileVerdict::Torn && result.finding.isEmpty())
        result.finding = QStringLiteral("The last write was cut off.");
    result.verdict = result.finding.isEmpty() ? FullVerdict::Whole : FullVerdict::Damaged;
    return result;
}
