#include "support/RecordedRows.h"

#include "store/InsertSerialData.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

QList<RecordedRow> takeRecordedRows()
{
    const QString prefix = QStringLiteral("recordedrows");
    const QTemporaryDir folder;
    InsertSerialData store(folder.filePath(QStringLiteral("rows.dat")), prefix);
    if (!store.createConnection())
        qFatal("no recording to read the rows back from");
    store.insertNow();
    QSqlQuery query(QSqlDatabase::database(prefix + QStringLiteral("filedb")));
    if (!query.exec(QStringLiteral("select serialno, channel1, channel2, pointDate from ostrivane "
                                   "order by serialno, pointDate, channel1")))
        qFatal("the recording cannot be read back");
    QList<RecordedRow> rows;
    while (query.next())
        rows << RecordedRow{query.value(0).toString(), query.value(1), query.value(2), query.value(3).toUInt()};
    return rows;
}
