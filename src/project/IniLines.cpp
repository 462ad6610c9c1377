#include "project/IniLines.h"

namespace {

const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || isLineEnd(c);
}

/// The name that @p text is written for: "%" and two digits, or "%U" and four, stand for a character, "\\" for "/".
QString unescaped(const QByteArray &text)
{
    const int size = int(text.size());
    QString result;
    for (int at = 0; at < size; ++at) {
        const char c = text.at(at);
        const bool isWide = c == '%' && at + 1 < size && text.at(at + 1) == 'U';
        const int digits = isWide ? at + 2 : at + 1;
        const int count = isWide ? 4 : 2;
        bool isEscape = false;
        const uint code = c == '%' && digits + count <= size ? text.mid(digits, count).toUInt(&isEscape, 16) : 0;
        if (isEscape) {
            result += QChar(ushort(code));
            at = digits + count - 1;
        } else {
            result += QLatin1Char(c == '\\' ? '/' : c);
        }
    }
    return result;
}

} // namespace

IniLines::IniLines(const QByteArray &text)
    : m_text(text), m_at(text.startsWith(byteOrderMark) ? int(byteOrderMark.size()) : 0)
{
}

bool IniLines::next()
{
    passOver();
    m_start = m_at;
    findEnd();
    m_at = m_end;
    if (m_start < m_end && isHeader())
        enterSection();
    return m_start < m_end;
}

bool IniLines::isHeader() const
{
    return m_text.at(m_start) == '[';
}

QString IniLines::name() const
{
    int end = m_equals < 0 ? m_end : m_equals;
    while (end > m_start && (m_text.at(end - 1) == ' ' || m_text.at(end - 1) == '\t'))
        --end;
    return unescaped(m_text.mid(m_start, end - m_start));
}

bool IniLines::sets(const QString &key) const
{
    return m_equals >= 0 && !isHeader() && key.startsWith(m_section) && name() == key.mid(m_section.size());
}

void IniLines::passOver()
{
    const int size = int(m_text.size());
    while (m_at < size && (isSpace(m_text.at(m_at)) || m_text.at(m_at) == ';')) {
        const bool isComment = m_text.at(m_at) == ';';
        ++m_at;
        while (isComment && m_at < size && !isLineEnd(m_text.at(m_at)))
            ++m_at;
    }
}

void IniLines::findEnd()
{
    const int size = int(m_text.size());
    bool inQuotes = false;
    bool isCut = false;
    m_equals = -1;
    int at = m_start;
    for (; at < size; ++at) {
        const char c = m_text.at(at);
        if (!inQuotes && (isLineEnd(c) || c == ';'))
            break;
        if (c == '"')
            inQuotes = !inQuotes;
        if (c == '=' && !inQuotes && m_equals < 0)
            m_equals = at;
        if (c != '\\')
            continue;
        // The next character belongs to this one; of a line end both.
        ++at;
        if (at + 1 < size && isLineEnd(m_text.at(at)) && isLineEnd(m_text.at(at + 1)) &&
            m_text.at(at) != m_text.at(at + 1))
            ++at;
        isCut = at >= size || (at + 1 == size && isLineEnd(m_text.at(at)));
    }
    m_end = qMin(at, size);
    m_isOpen = m_end == size && (inQuotes || isCut);
}

void IniLines::enterSection()
{
    int close = int(m_text.indexOf(']', m_start));
    if (close < 0 || close > m_end)
        close = m_end;
    const QByteArray title = m_text.mid(m_start + 1, close - m_start - 1).trimmed();
    if (title.compare("general", Qt::CaseInsensitive) == 0)
        m_section.clear();
    else if (title.compare("%general", Qt::CaseInsensitive) == 0)
        m_section = QString::fromLatin1(title.mid(1)) + QLatin1Char('/');
    else
        m_section = unescaped(title) + QLatin1Char('/');
}
