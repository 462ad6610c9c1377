#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// Everything that SQLite writes into one file while this object is there, in order.
class WriteLog
{
public:
    struct Write
    {
        qint64 offset = 0;
        QByteArray bytes;
    };

    explicit WriteLog(const QString &file);
    ~WriteLog();
    WriteLog(const WriteLog &) = delete;
    WriteLog &operator=(const WriteLog &) = delete;

    const std::vector<Write> &writes() const { return m_writes; }
    void add(qint64 offset, const QByteArray &bytes) { m_writes.push_back({offset, bytes}); }

private:
    std::vector<Write> m_writes;
};

/// What a file holds after @p write has reached the disk.
void apply(const WriteLog::Write &write, QByteArray &content);
/// The same when the writing was cut off after @p size bytes.
void applyPart(const WriteLog::Write &write, int size, QByteArray &content);
