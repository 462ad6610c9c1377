#include "store/PendingRowFile.h"

#include "store/SetAside.h"

#include <QCryptographicHash>
#include <QFile>

#include <optional>

namespace {

const QByteArray headerPrefix = QByteArrayLiteral("sorvanto-pending-rows 1 ");

QByteArray headerLine(const std::vector<PendingRow> &rows)
{
    return headerPrefix + QByteArray::number(qulonglong(rows.size())) + '\n';
}

std::optional<PendingRow> parsed(const QByteArray &line)
{
    const QList<QByteArray> fields = line.chopped(line.endsWith('\n') ? 1 : 0).split(' ');
    if (fields.size() != 4 || !line.endsWith('\n'))
        return std::nullopt;
    bool timeOk = false;
    bool channel1Ok = false;
    bool channel2Ok = false;
    PendingRow row;
    row.time = fields.at(0).toUInt(&timeOk);
    row.channel1 = fields.at(1).toDouble(&channel1Ok);
    row.channel2 = fields.at(2).toDouble(&channel2Ok);
    const QByteArray serial = QByteArray::fromPercentEncoding(fields.at(3));
    row.serial = QString::fromUtf8(serial.constData(), serial.size());
    if (!timeOk || !channel1Ok || !channel2Ok)
        return std::nullopt;
    return row;
}

} // namespace

PendingRowFile::PendingRowFile(const QString &databaseFile) : m_path(databaseFile + QLatin1String(".pending")) {}

QString PendingRowFile::path() const
{
    return m_path;
}

bool PendingRowFile::exists() const
{
    return QFile::exists(m_path);
}

PendingRowFile::Content PendingRowFile::read() const
{
    Content content;
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        content.damaged = file.exists();
        return content;
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    content.digest = hash.result();
    file.seek(0);
    QByteArray header;
    if (file.peek(headerPrefix.size()) == headerPrefix)
        header = file.readLine();
    while (!file.atEnd()) {
        if (const std::optional<PendingRow> row = parsed(file.readLine()))
            content.rows.push_back(*row);
        else
            content.damaged = true;
    }
    if (header != headerLine(content.rows))
        content.damaged = true;
    return content;
}

bool PendingRowFile::remove() const
{
    return QFile::remove(m_path);
}

QString PendingRowFile::setAside() const
{
    return ::setAside(m_path, QStringLiteral("damaged"));
}
