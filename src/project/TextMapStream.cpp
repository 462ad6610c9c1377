#include "project/TextMapStream.h"

#include <QtEndian>
#include <optional>

namespace {

constexpr quint32 mapType = 8;
constexpr quint32 hashType = 28;
constexpr quint32 textType = 10;
constexpr quint32 nullText = 0xffffffff;

void append(QByteArray &stream, quint32 number)
{
    const quint32 bigEndian = qToBigEndian(number);
    stream.append(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
}

void append(QByteArray &stream, const QString &text)
{
    append(stream, quint32(text.size()) * 2);
    for (const QChar character : text)
        stream.append(char(character.row())).append(char(character.cell()));
}

/// Takes from the front of a stream; nothing where it is too short.
class StreamReader
{
public:
    explicit StreamReader(const QByteArray &stream) : m_stream(stream) {}

    std::optional<quint32> number();
    std::optional<QString> text();

private:
    quint32 left() const { return quint32(m_stream.size() - m_at); }

    const QByteArray m_stream;
    int m_at = 0;
};

std::optional<quint32> StreamReader::number()
{
    if (left() < sizeof(quint32))
        return std::nullopt;
    const auto value = qFromBigEndian<quint32>(m_stream.constData() + m_at);
    m_at += int(sizeof value);
    return value;
}

std::optional<QString> StreamReader::text()
{
    const std::optional<quint32> size = number();
    if (size == nullText)
        return QString();
    if (!size || *size % 2 != 0 || *size > left())
        return std::nullopt;
    QString text;
    for (const int end = m_at + int(*size); m_at < end; m_at += 2)
        text += QChar(uchar(m_stream.at(m_at + 1)), uchar(m_stream.at(m_at)));
    return text;
}

} // namespace

QByteArray textMapToStream(const QMap<QString, QString> &map)
{
    QByteArray stream;
    append(stream, mapType);
    append(stream, quint32(map.size()));
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        append(stream, entry.key());
        append(stream, textType);
        append(stream, entry.value());
    }
    return stream;
}

QMap<QString, QString> textMapFromStream(const QByteArray &stream)
{
    QMap<QString, QString> map;
    StreamReader reader(stream);
    const std::optional<quint32> type = reader.number();
    if (type != mapType && type != hashType)
        return map;
    const quint32 count = reader.number().value_or(0);
    for (quint32 i = 0; i < count; ++i) {
        const std::optional<QString> key = reader.text();
        const bool isText = reader.number() == textType;
        const std::optional<QString> value = reader.text();
        if (!key || !isText || !value)
            break;
        map.insert(*key, *value);
    }
    return map;
}
