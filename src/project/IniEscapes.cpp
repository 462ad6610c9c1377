#include "project/IniEscapes.h"

#include <cctype>
#include <cstring>

namespace {

// What stands behind a backslash, and what for. The first seven are also written so.
constexpr char letters[] = "abfnrtv\"\\?'";
constexpr char characters[] = "\a\b\f\n\r\t\v\"\\?'";
constexpr int lettersWritten = 9;

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

/// -1 for a character that is no digit.
int digitOf(char c, int base)
{
    const int digit = std::isdigit(uchar(c)) ? c - '0' : std::isxdigit(uchar(c)) ? (c | 0x20) - 'a' + 10 : base;
    return digit < base ? digit : -1;
}

bool isUtf8(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

/// Goes through one value from its start to its end.
class ValueReader
{
public:
    ValueReader(const QByteArray &value, IniEncoding encoding)
        : m_value(value), m_isUtf8(encoding == IniEncoding::Text && isUtf8(value))
    {
    }

    QStringList read();

private:
    bool isAtEnd() const { return m_at >= m_value.size(); }
    void skipBlanks();
    void readQuote();
    void readPlain();
    void readEscape();
    void readCode(int base);
    void endText();

    const QByteArray m_value;
    const bool m_isUtf8;
    int m_at = 0;
    QStringList m_texts;
    QString m_text;
    int m_firmSize = 0; ///< so much of the text does not end in blanks that may be left out
    bool m_isQuoted = false;
    bool m_inQuotes = false;
};

QStringList ValueReader::read()
{
    skipBlanks();
    while (!isAtEnd()) {
        const char c = m_value.at(m_at);
        if (c == '\\')
            readEscape();
        else if (c == '"')
            readQuote();
        else if (c == ',' && !m_inQuotes)
            endText();
        else
            readPlain();
    }
    endText();
    return m_texts;
}

void ValueReader::skipBlanks()
{
    while (!isAtEnd() && isBlank(m_value.at(m_at)))
        ++m_at;
}

void ValueReader::readQuote()
{
    ++m_at;
    m_isQuoted = true;
    m_inQuotes = !m_inQuotes;
    if (!m_inQuotes)
        skipBlanks();
}

void ValueReader::readPlain()
{
    const int start = m_at++;
    while (!isAtEnd() && !std::strchr("\\\",", m_value.at(m_at)))
        ++m_at;
    const char *run = m_value.constData() + start;
    const int size = m_at - start;
    if (m_isUtf8)
        m_text += QString::fromUtf8(run, size);
    else
        m_text += QLatin1String(run, size);
}

void ValueReader::readEscape()
{
    ++m_at;
    const char c = isAtEnd() ? '\0' : m_value.at(m_at++);
    const char *letter = c ? std::strchr(letters, c) : nullptr;
    if (letter) {
        m_text += QLatin1Char(characters[letter - letters]);
    } else if (c == 'x' && !isAtEnd() && digitOf(m_value.at(m_at), 16) >= 0) {
        readCode(16);
    } else if (digitOf(c, 8) >= 0) {
        --m_at;
        readCode(8);
    } else if (isLineEnd(c) && !isAtEnd() && isLineEnd(m_value.at(m_at)) && m_value.at(m_at) != c) {
        ++m_at;
    }
    m_firmSize = int(m_text.size());
}

/// All digits that follow, as many as there are.
void ValueReader::readCode(int base)
{
    uint code = 0;
    for (int digit = 0; !isAtEnd() && (digit = digitOf(m_value.at(m_at), base)) >= 0; ++m_at)
        code = code * uint(base) + uint(digit);
    m_text += QChar(ushort(code));
}

void ValueReader::endText()
{
    while (!m_isQuoted && m_text.size() > m_firmSize && isBlank(m_text.back().toLatin1()))
        m_text.chop(1);
    m_texts += m_text;
    m_text.clear();
    m_firmSize = 0;
    m_isQuoted = false;
    ++m_at;
    skipBlanks();
}

void appendEscaped(QByteArray &result, QChar character, bool &isBehindCode)
{
    const ushort code = character.unicode();
    const bool isAscii = code < 0x7f;
    const char c = isAscii ? char(code) : '\0';
    const char *letter = c ? static_cast<const char *>(std::memchr(characters, c, lettersWritten)) : nullptr;
    // A digit would count as one more of the code before it.
    const bool needsCode = !letter && (!isAscii || code < 0x20 || (isBehindCode && std::isxdigit(code)));
    if (letter)
        result.append('\\').append(letters[letter - characters]);
    else if (needsCode)
        result.append(code == 0 ? "\\" : "\\x").append(QByteArray::number(code, 16));
    else
        result.append(c);
    isBehindCode = needsCode;
}

} // namespace

QStringList iniTexts(const QByteArray &value, IniEncoding encoding)
{
    return ValueReader(value, encoding).read();
}

QByteArray iniEscaped(const QString &text)
{
    QByteArray result;
    bool needsQuotes = text.startsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char(' '));
    bool isBehindCode = false;
    for (const QChar character : text) {
        needsQuotes = needsQuotes || character == QLatin1Char(';') || character == QLatin1Char(',') ||
                      character == QLatin1Char('=');
        appendEscaped(result, character, isBehindCode);
    }
    return needsQuotes ? '"' + result + '"' : result;
}
