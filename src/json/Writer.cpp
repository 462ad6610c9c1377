#include "json/Writer.h"

#include "json/QJsonValue.h"

#include <cmath>
#include <cstring>
#include <variant>

namespace json {

namespace {

/// The letter after the backslash for a character that is written as an escape, otherwise 0.
char escapeLetter(ushort c)
{
    switch (c) {
    case '\b':
        return 'b';
    case '\t':
        return 't';
    case '\n':
        return 'n';
    case '\f':
        return 'f';
    case '\r':
        return 'r';
    case '"':
        return '"';
    case '\\':
        return '\\';
    default:
        return 0;
    }
}

class Writer
{
public:
    QString take();
    void write(const QJsonValue &value) { value.visit(*this); }

    void operator()(std::monostate) { append("null", 4); }
    void operator()(bool value) { value ? append("true", 4) : append("false", 5); }
    void operator()(double value);
    void operator()(const QString &text);
    void operator()(const QJsonArray &array);
    void operator()(const QJsonObject &object);

private:
    QChar *room(int size);
    void append(char c) { *room(1) = QLatin1Char(c), ++m_used; }
    void append(const char *ascii, int size);
    void append(const QString &text);

    /// As long as its memory is large; its first m_used characters are written.
    QString m_text;
    int m_used = 0;
};

QString Writer::take()
{
    m_text.resize(m_used);
    return std::move(m_text);
}

/// Where the next @p size characters go.
QChar *Writer::room(int size)
{
    if (m_used + size > m_text.size())
        m_text.resize(2 * (m_used + size));
    return m_text.data() + m_used;
}

void Writer::append(const char *ascii, int size)
{
    QChar *out = room(size);
    for (int i = 0; i < size; ++i)
        out[i] = QLatin1Char(ascii[i]);
    m_used += size;
}

void Writer::append(const QString &text)
{
    std::memcpy(room(text.size()), text.constData(), sizeof(QChar) * static_cast<std::size_t>(text.size()));
    m_used += text.size();
}

void Writer::operator()(double value)
{
    if (std::isfinite(value))
        append(QString::number(value, 'g', 17));
    else
        (*this)(std::monostate());
}

void Writer::operator()(const QString &text)
{
    QChar *const start = room(2 * text.size() + 2);
    QChar *out = start;
    *out++ = QLatin1Char('"');
    for (const QChar c : text) {
        const char letter = escapeLetter(c.unicode());
        if (letter)
            *out++ = QLatin1Char('\\');
        *out++ = letter ? QLatin1Char(letter) : c;
    }
    *out++ = QLatin1Char('"');
    m_used += static_cast<int>(out - start);
}

void Writer::operator()(const QJsonArray &array)
{
    append('[');
    for (const QJsonValue &value : array) {
        if (&value != array.begin())
            append(',');
        write(value);
    }
    append(']');
}

void Writer::operator()(const QJsonObject &object)
{
    append('{');
    for (const Member &member : object) {
        if (&member != object.begin())
            append(',');
        (*this)(member.key);
        append(": ", 2);
        write(member.value);
    }
    append('}');
}

} // namespace

QString serialise(const QJsonValue &value)
{
    Writer writer;
    writer.write(value);
    return writer.take();
}

} // namespace json
