#include "store/RecordingLayout.h"

#include <limits>

namespace {

constexpr int autoVacuumField = 52;

/// Without blanks, and in small letters: SQLite keeps a statement nearly as it was given.
QByteArray essence(const QByteArray &statement)
{
    return statement.simplified().replace(' ', "").toLower();
}

const QByteArray tableEssence = QByteArrayLiteral(
    "createtableostrivane(idintegerprimarykeyautoincrement,serialnovarchar(18)notnull,channel1float,channel2float,"
    "pointdateintegernotnull)");
const QByteArray indexEssence = QByteArrayLiteral("createindexostrivane_pointdateonostrivane(pointdate)");

void note(const QByteArray &payload, const SqlitePage::Record &record, RecordingLayout &layout)
{
    const QByteArray type = SqlitePage::text(payload, record.columns[0]);
    const QByteArray name = SqlitePage::text(payload, record.columns[1]);
    const QByteArray statement = essence(SqlitePage::text(payload, record.columns[4]));
    const auto root = quint32(SqlitePage::integer(payload, record.columns[3]));
    if (type == "table" && statement == tableEssence)
        layout.table = root;
    else if (type == "table" && name == "sqlite_sequence")
        layout.sequence = root;
    else if (type == "index" && statement == indexEssence)
        layout.index = root;
    else
        layout.onlyOurs = false;
}

bool isEntry(const SqlitePage::Record &record)
{
    const auto &columns = record.columns;
    return record.count == 5 && SqlitePage::isText(columns[0]) && SqlitePage::isText(columns[1]) &&
           SqlitePage::isInteger(columns[3]) && (SqlitePage::isText(columns[4]) || SqlitePage::isNull(columns[4]));
}

bool isChannel(const SqlitePage::Column &column)
{
    return SqlitePage::isNull(column) || SqlitePage::isInteger(column) || column.type == 7;
}

} // namespace

RecordingLayout RecordingLayout::read(PageFile &file)
{
    RecordingLayout layout;
    const std::optional<SqlitePage::Page> first = file.page(1);
    layout.readable = first && first->isSound();
    // With so many tables that they take more than a page it is no recording that the station has made. One that gives
    // pages back keeps a directory of them.
    layout.onlyOurs = layout.readable && first->isLeaf() && file.headerField(autoVacuumField) == 0;
    for (int i = 0; first && first->isLeaf() && i < first->cellCount(); ++i) {
        const std::optional<SqlitePage::Cell> cell = first->cell(i);
        const QByteArray payload = cell ? file.payload(*first, *cell) : QByteArray();
        const std::optional<SqlitePage::Record> record = SqlitePage::parseRecord(payload);
        if (record && isEntry(*record))
            note(payload, *record, layout);
        else
            layout.readable = false;
    }
    return layout;
}

std::optional<StoredRow> storedRow(qint64 rowId, const QByteArray &payload)
{
    const std::optional<SqlitePage::Record> record = SqlitePage::parseRecord(payload);
    if (!record || record->count != 5 || rowId < 1 || rowId == std::numeric_limits<qint64>::max())
        return std::nullopt;
    const auto &columns = record->columns;
    if (!SqlitePage::isNull(columns[0]) || !SqlitePage::isText(columns[1]) || !isChannel(columns[2]) ||
        !isChannel(columns[3]) || !SqlitePage::isInteger(columns[4]))
        return std::nullopt;
    const qint64 time = SqlitePage::integer(payload, columns[4]);
    if (time < 0 || time > std::numeric_limits<quint32>::max())
        return std::nullopt;
    return StoredRow{rowId, SqlitePage::text(payload, columns[1]), SqlitePage::number(payload, columns[2]),
                     SqlitePage::number(payload, columns[3]), quint32(time)};
}
