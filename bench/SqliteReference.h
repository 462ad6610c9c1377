#pragma once

#include <QByteArray>

#include <sqlite3.h>

/// A recording as the plain SQLite interface writes it: what the store's own overhead is measured against.
class SqliteReference
{
public:
    explicit SqliteReference(const QByteArray &file)
    {
        if (sqlite3_open(file.constData(), &m_database) != SQLITE_OK)
            qFatal("%s", sqlite3_errmsg(m_database));
    }
    ~SqliteReference() { sqlite3_close(m_database); }
    SqliteReference(const SqliteReference &) = delete;
    SqliteReference &operator=(const SqliteReference &) = delete;

    void exec(const char *statement)
    {
        if (sqlite3_exec(m_database, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s: %s", statement, sqlite3_errmsg(m_database));
    }
    sqlite3 *handle() const { return m_database; }

private:
    sqlite3 *m_database = nullptr;
};

/// As the store tunes its own connection.
inline void tune(SqliteReference &database)
{
    database.exec("PRAGMA page_size = 4096");
    database.exec("PRAGMA cache_size = 65536");
    database.exec("PRAGMA journal_mode = OFF");
}
