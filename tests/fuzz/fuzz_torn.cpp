#include "FuzzGround.h"
#include "FuzzInput.h"

#include "store/FileCheck.h"
#include "store/InsertSerialData.h"
#include "store/PageFile.h"
#include "store/RecordingLayout.h"
#include "store/TornRecording.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

namespace {

constexpr int rowsOfTheWhole = 700;
constexpr int pageSize = 4096;

QString path()
{
    return fuzzFile("Kitchen.dat");
}

QStringList files()
{
    return QDir(QFileInfo(path()).path()).entryList(QDir::Files | QDir::Hidden);
}

QByteArray makeWhole()
{
    removeFuzzFiles();
    InsertSerialData store(path(), QStringLiteral("whole"));
    require(store.createConnection(), "a recording is made");
    for (int i = 0; i < rowsOfTheWhole; ++i) {
        const QString serial = QStringLiteral("TEMPERATURE %1").arg(i % 7);
        InsertSerialData::enqueue({serial, i / 4.0, i % 5 == 0 ? noValue : 40.5, quint32(1700000000 + i)});
        if (i % 90 == 89)
            store.insertNow();
    }
    store.insertNow();
    return contentOf(path());
}

/// The row ids in each page of the file at path().
QList<QList<qint64>> rowsByPage()
{
    QList<QList<qint64>> pages;
    PageFile file(path());
    require(file.open(), "the whole recording can be read");
    for (quint32 number = 1; number <= file.pageCount(); ++number) {
        pages << QList<qint64>();
        const auto page = file.page(number);
        for (int i = 0; page && page->kind() == SqlitePage::Kind::TableLeaf && i < page->cellCount(); ++i) {
            const auto cell = page->cell(i);
            if (cell && storedRow(cell->rowId, file.payload(*page, *cell)))
                pages.last() << cell->rowId;
        }
    }
    return pages;
}

QVariantList column(const char *statement)
{
    QVariantList values;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
        database.setDatabaseName(path());
        require(database.open(), "the new recording opens");
        QSqlQuery query(database);
        query.exec(QLatin1String(statement));
        while (query.next())
            values << query.value(0);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("check"));
    return values;
}

/// Where pages are as they were, their rows are saved, whatever has become of the others.
void checkSaved(const QByteArray &whole, const QByteArray &torn, const QList<QList<qint64>> &rows)
{
    QSet<qint64> saved;
    const QVariantList ids = column("select id from ostrivane order by id");
    for (const QVariant &id : ids)
        saved.insert(id.toLongLong());
    for (int page = 1; page < rows.size() && torn.size() >= pageSize; ++page) {
        if (torn.left(100) != whole.left(100) ||
            torn.mid(page * pageSize, pageSize) != whole.mid(page * pageSize, pageSize))
            continue;
        for (const qint64 id : rows.at(page))
            require(saved.contains(id), "the rows of a page that is as it was are saved");
    }
}

} // namespace

/// A recording of any content, or one that was damaged.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QByteArray whole = makeWhole();
    static const QList<QList<qint64>> rows = rowsByPage();
    removeFuzzFiles();
    FuzzInput input(data, size);
    const bool isRaw = input.byte() % 4 == 0;
    const QByteArray content = isRaw ? input.rest() : damaged(whole, input);
    writeFile(path(), content);

    const FileVerdict verdict = checkRecording(path());
    require(contentOf(path()) == content, "a check changes nothing");
    require((verdict == FileVerdict::Missing) == content.isEmpty(), "a file that is there is judged");
    if (!content.startsWith(QByteArray("SQLite format 3\0", 16)))
        require(verdict == FileVerdict::Foreign || content.isEmpty(), "another program's file is foreign");
    if (content == whole)
        require(verdict == FileVerdict::Whole, "a whole recording is whole");

    const TornRecording torn = replaceTornRecording(path());
    if (torn.file.isEmpty()) {
        require(contentOf(path()) == content && files() == QStringList(QFileInfo(path()).fileName()),
                "what is not replaced stays as it is");
        return 0;
    }
    require(verdict == FileVerdict::Torn, "only a torn recording is replaced");
    require(contentOf(torn.file) == content, "a torn recording is set aside untouched");
    require(files().size() == 2, "nothing else is left");
    require(checkRecording(path()) == FileVerdict::Whole, "what takes its place is whole");
    require(column("pragma integrity_check") == QVariantList{QStringLiteral("ok")}, "also to SQLite");
    require(column("select count(*) from ostrivane") == QVariantList{qlonglong(torn.rows)}, "the rows are counted");
    if (!isRaw)
        checkSaved(whole, content, rows);
    return 0;
}
