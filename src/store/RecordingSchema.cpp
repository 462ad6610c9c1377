#include "store/RecordingSchema.h"

#include "store/Logging.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <iterator>

QString timeIndexStatement()
{
    return QStringLiteral("create index ostrivane_pointDate on ostrivane (pointDate)");
}

bool tuneForAppending(const QSqlDatabase &database)
{
    // The last message names another journal than its statement does. Both are meant to be as they are.
    static constexpr struct
    {
        const char *statement;
        const char *failure;
    } pragmas[] = {
        {"PRAGMA page_size = 4096", "PRAGMA page_size = 4096 : query error"},
        {"PRAGMA cache_size = 65536", "PRAGMA cache_size = 65536 : query error"},
        {"PRAGMA journal_mode = OFF", "PRAGMA journal_mode = MEMORY : query error"},
    };
    return std::all_of(std::begin(pragmas), std::end(pragmas), [&database](const auto &pragma) {
        const bool done = QSqlQuery(database).exec(QLatin1String(pragma.statement));
        if (!done)
            qCDebug(lcStore).noquote().nospace() << pragma.failure;
        return done;
    });
}

bool createTable(const QSqlDatabase &database)
{
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("select name from sqlite_master where type='table' and name='ostrivane';"))) {
        qCDebug(lcStore).noquote().nospace() << "InsertSerialData::createTable : select table : query error";
        return false;
    }
    if (query.next()) {
        qCDebug(lcStore).noquote().nospace() << "InsertSerialData::createTable : table exist";
        return true;
    }
    if (!query.exec(QStringLiteral("create table ostrivane (\t\tid integer primary key autoincrement,"
                                   "\t\tserialno varchar(18) not null, \t\tchannel1 float, channel2 float, "
                                   "\t\tpointDate integer not null\t\t)"))) {
        qCDebug(lcStore).noquote().nospace() << "InsertSerialData::createTable : create table : query error";
        return false;
    }
    qCDebug(lcStore).noquote().nospace() << "InsertSerialData::createTable : create table";
    // The range queries would otherwise read the whole file. A recording without the index still works.
    if (!query.exec(timeIndexStatement())) {
        qCWarning(lcStore).noquote().nospace()
            << "InsertSerialData::createTable : [ERROR] create index : " << query.lastError().text();
    }
    return true;
}

bool isDatabase(const QSqlDatabase &database)
{
    return QSqlQuery(database).exec(QStringLiteral("select name from sqlite_master"));
}
