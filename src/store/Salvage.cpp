#include "store/Salvage.h"

#include "store/PageFile.h"
#include "store/RecordingLayout.h"
#include "store/RecordingSchema.h"

#include <QFile>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace {

const QString connectionName = QStringLiteral("salvage");
// Rows come nearly in their order, so that their index grows at its end, too.
const QString modestCache = QStringLiteral("PRAGMA cache_size = 4096");
constexpr quint32 pagesBetweenReports = 256;
// Or all that was written would have to reach the disk at the very end, while nothing can be told.
constexpr quint32 pagesBetweenCommits = 64 * pagesBetweenReports;
constexpr int keysRemembered = 1000;

QVariant channel(const std::optional<double> &value)
{
    return value ? QVariant(*value) : QVariant();
}

/// Reads a torn recording page by page into a new one.
class Salvage
{
public:
    Salvage(PageFile &torn, const QSqlDatabase &target) : m_torn(torn), m_target(target), m_insert(target) {}

    SalvageResult run(const SalvageProgress &progress)
    {
        if (!tuneForAppending(m_target) || !exec(modestCache) || !createTable(m_target) || !begin())
            return m_result;
        // A row that stands in two pages, because a split of them was cut off, is one row.
        if (!m_insert.prepare(QStringLiteral("insert or ignore into ostrivane "
                                             "(id, serialno, channel1, channel2, pointDate) values (?, ?, ?, ?, ?)")))
            return failed(m_insert);
        for (quint32 number = 2; number <= m_torn.pagesPresent(); ++number) {
            if (!takePage(number))
                return failed(m_insert);
            if (number % pagesBetweenCommits == 0 && !(commit() && begin()))
                return m_result;
            if (progress && number % pagesBetweenReports == 0 && !progress(number, m_torn.pagesPresent()))
                return givenUp();
        }
        m_result.complete = commit();
        return m_result;
    }

private:
    bool begin() { return exec(QStringLiteral("begin exclusive")); }
    bool commit() { return exec(QStringLiteral("commit")); }

    SalvageResult givenUp()
    {
        commit();
        m_result.error = QStringLiteral("given up");
        m_result.isGivenUp = true;
        return m_result;
    }

    bool takePage(quint32 number)
    {
        using Kind = SqlitePage::Kind;
        const std::optional<SqlitePage::Page> page = m_torn.page(number);
        if (!page || (page->kind() != Kind::TableLeaf && page->kind() != Kind::TableInterior))
            return true;
        if (!page->isSound())
            return carve(*page);
        for (int i = 0; page->isLeaf() && i < page->cellCount(); ++i) {
            const std::optional<StoredRow> row = rowOf(*page, page->cell(i));
            if (row && !takeRow(*row))
                return false;
        }
        return true;
    }

    /// Half of the page is older than the other half: its directory may not know the rows that are still there.
    bool carve(const SqlitePage::Page &page)
    {
        int at = 0;
        while (at < page.bytes().size()) {
            const std::optional<SqlitePage::Cell> cell = page.cellAt(at);
            const std::optional<StoredRow> row = rowOf(page, cell);
            if (row && !takeRow(*row))
                return false;
            at += row ? cell->size : 1;
        }
        return true;
    }

    std::optional<StoredRow> rowOf(const SqlitePage::Page &page, const std::optional<SqlitePage::Cell> &cell)
    {
        return cell ? storedRow(cell->rowId, m_torn.payload(page, *cell)) : std::nullopt;
    }

    bool takeRow(const StoredRow &row)
    {
        m_insert.bindValue(0, row.rowId);
        m_insert.bindValue(1, key(row.serial));
        m_insert.bindValue(2, channel(row.channel1));
        m_insert.bindValue(3, channel(row.channel2));
        m_insert.bindValue(4, row.time);
        if (!m_insert.exec())
            return false;
        m_result.rows += m_insert.numRowsAffected();
        return true;
    }

    QString key(const QByteArray &serial)
    {
        const auto known = m_keys.constFind(serial);
        if (known != m_keys.constEnd())
            return *known;
        if (m_keys.size() >= keysRemembered)
            m_keys.clear();
        return *m_keys.insert(serial, QString::fromUtf8(serial.constData(), serial.size()));
    }

    bool exec(const QString &statement)
    {
        QSqlQuery query(m_target);
        if (query.exec(statement))
            return true;
        failed(query);
        return false;
    }

    SalvageResult failed(const QSqlQuery &query)
    {
        m_result.error = query.lastError().text();
        return m_result;
    }

    PageFile &m_torn;
    QSqlDatabase m_target;
    QSqlQuery m_insert;
    QHash<QByteArray, QString> m_keys;
    SalvageResult m_result;
};

} // namespace

SalvageResult salvageRecording(const QString &tornPath, const QString &newPath, const SalvageProgress &progress)
{
    PageFile torn(tornPath);
    return salvageRecording(torn, newPath, progress);
}

SalvageResult salvageRecording(PageFile &torn, const QString &newPath, const SalvageProgress &progress)
{
    if (!torn.open())
        return {false, 0, QStringLiteral("no SQLite file")};
    if (QFile::exists(newPath) && !QFile::remove(newPath))
        return {false, 0, QStringLiteral("an earlier attempt cannot be removed")};
    SalvageResult result;
    {
        QSqlDatabase target = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
        target.setDatabaseName(newPath);
        if (target.open())
            result = Salvage(torn, target).run(progress);
        else
            result.error = target.lastError().text();
        target.close();
    }
    QSqlDatabase::removeDatabase(connectionName);
    return result;
}
