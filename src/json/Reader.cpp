#include "json/Reader.h"

#include "json/QJsonValue.h"

#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

namespace json {

namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// -1 for a character that is no hexadecimal digit.
int hexValue(char c)
{
    if (isDigit(c))
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

QString decodeUtf8(const char *bytes, int size)
{
    const QString text = QString::fromUtf8(bytes, size);
    // The conversion takes this character for a mark of the encoding and drops it.
    return qstrncmp(bytes, byteOrderMark, 3) == 0 && size >= 3 ? QChar(QChar::ByteOrderMark) + text : text;
}

/// Takes the elements from @p first on out of @p stack.
template <typename T>
std::vector<T> takeFrom(std::vector<T> &stack, std::size_t first)
{
    const auto begin = stack.begin() + static_cast<std::ptrdiff_t>(first);
    std::vector<T> taken(std::make_move_iterator(begin), std::make_move_iterator(stack.end()));
    stack.erase(begin, stack.end());
    return taken;
}

/// Recursive descent over one text. What it cannot accept it throws as a QJsonParseError.
class Reader
{
public:
    explicit Reader(const QByteArray &text) : m_begin(text.constData()), m_at(m_begin), m_end(m_begin + text.size()) {}

    std::unique_ptr<QJsonRoot> readDocument();

private:
    /// Bytes of a string up to its next quote or backslash.
    struct Run
    {
        const char *bytes;
        int size;
        bool ascii;
    };

    [[noreturn]] void fail(QJsonParseError::Number number) const;
    [[noreturn]] void failNumber() const;
    char peek() const { return m_at == m_end ? '\0' : *m_at; }
    char peekToken();
    void enter();

    QJsonValue readValue();
    QJsonObject readObject();
    QJsonArray readArray();
    QJsonValue readLiteral(const char *text, QJsonValue value);
    QJsonValue readNumber();
    void skipDigits();

    QString *newest(std::vector<QString> &texts, std::size_t place);
    QString readString(QString *known = nullptr);
    Run readRun();
    static QString textOf(const Run &run);
    void appendEscape(QString &text);
    void appendUnicodeEscape(QString &text);
    ushort readHex();

    const char *m_begin;
    const char *m_at;
    const char *m_end;
    int m_depth = 0;
    // Members and values of the containers being read; each is moved out in one piece when its container ends.
    std::vector<Member> m_members;
    std::vector<QJsonValue> m_values;
    // The newest key and text at each place of an object: the objects of a list have the same keys and many equal
    // texts, which share their memory.
    std::vector<QString> m_keys;
    std::vector<QString> m_texts;
};

void Reader::fail(QJsonParseError::Number number) const
{
    throw QJsonParseError{number, m_at - m_begin};
}

void Reader::failNumber() const
{
    fail(m_at == m_end ? QJsonParseError::TextEndsInNumber : QJsonParseError::IllegalNumber);
}

char Reader::peekToken()
{
    while (m_at != m_end && isSpace(*m_at))
        ++m_at;
    return peek();
}

std::unique_ptr<QJsonRoot> Reader::readDocument()
{
    std::unique_ptr<QJsonRoot> root;
    const char first = peekToken();
    if (first == '{')
        root = std::make_unique<QJsonObject>(readObject());
    else if (first == '[')
        root = std::make_unique<QJsonArray>(readArray());
    else
        fail(m_at == m_end ? QJsonParseError::EmptyText : QJsonParseError::IllegalValue);
    peekToken();
    if (m_at != m_end)
        fail(QJsonParseError::TextAfterDocument);
    return root;
}

QJsonValue Reader::readValue()
{
    switch (peekToken()) {
    case '"':
        return readString();
    case '[':
        return readArray();
    case '{':
        return readObject();
    case 't':
        return readLiteral("true", true);
    case 'f':
        return readLiteral("false", false);
    case 'n':
        return readLiteral("null", QJsonValue());
    default:
        return readNumber();
    }
}

void Reader::enter()
{
    if (m_depth == maximumNesting)
        fail(QJsonParseError::DeepNesting);
    ++m_depth;
    ++m_at;
}

QJsonObject Reader::readObject()
{
    enter();
    const std::size_t first = m_members.size();
    bool more = peekToken() != '}';
    while (more) {
        if (peekToken() != '"')
            fail(QJsonParseError::UnterminatedObject);
        const std::size_t place = m_members.size() - first;
        QString key = readString(newest(m_keys, place));
        if (peekToken() != ':')
            fail(QJsonParseError::MissingNameSeparator);
        ++m_at;
        QJsonValue value = peekToken() == '"' ? readString(newest(m_texts, place)) : readValue();
        m_members.push_back({std::move(key), std::move(value)});
        const char next = peekToken();
        if (next != ',' && next != '}')
            fail(QJsonParseError::UnterminatedObject);
        more = next == ',';
        if (more)
            ++m_at;
    }
    ++m_at;
    --m_depth;
    return QJsonObject(takeFrom(m_members, first));
}

QJsonArray Reader::readArray()
{
    enter();
    const std::size_t first = m_values.size();
    bool more = peekToken() != ']';
    while (more) {
        QJsonValue value = readValue();
        m_values.push_back(std::move(value));
        const char next = peekToken();
        if (next != ',' && next != ']')
            fail(QJsonParseError::MissingValueSeparator);
        more = next == ',';
        if (more)
            ++m_at;
    }
    ++m_at;
    --m_depth;
    return QJsonArray(takeFrom(m_values, first));
}

QJsonValue Reader::readLiteral(const char *text, QJsonValue value)
{
    for (; *text; ++text, ++m_at) {
        if (peek() != *text)
            fail(QJsonParseError::IllegalValue);
    }
    return value;
}

QJsonValue Reader::readNumber()
{
    const char *start = m_at;
    if (peek() == '-')
        ++m_at;
    if (peek() == '0')
        ++m_at;
    else
        skipDigits();
    if (peek() == '.') {
        ++m_at;
        skipDigits();
    }
    if (peek() == 'e' || peek() == 'E') {
        ++m_at;
        if (peek() == '+' || peek() == '-')
            ++m_at;
        skipDigits();
    }
    if (m_at == m_end)
        fail(QJsonParseError::TextEndsInNumber);
    return QByteArray::fromRawData(start, static_cast<int>(m_at - start)).toDouble();
}

void Reader::skipDigits()
{
    if (!isDigit(peek()))
        failNumber();
    while (isDigit(peek()))
        ++m_at;
}

/// Null beyond the places that are worth it.
QString *Reader::newest(std::vector<QString> &texts, std::size_t place)
{
    constexpr std::size_t placesKept = 64;
    if (place >= placesKept)
        return nullptr;
    if (place >= texts.size())
        texts.resize(place + 1);
    return &texts[place];
}

/// Shares the text of @p known when it is the same, otherwise makes it the known one; only plain texts are worth it.
QString Reader::readString(QString *known)
{
    ++m_at;
    const Run run = readRun();
    if (known && run.ascii && *m_at == '"') {
        ++m_at;
        if (*known != QLatin1String(run.bytes, run.size))
            *known = textOf(run);
        return *known;
    }
    QString text = textOf(run);
    while (*m_at == '\\') {
        appendEscape(text);
        text += textOf(readRun());
    }
    ++m_at;
    return text;
}

Reader::Run Reader::readRun()
{
    const char *start = m_at;
    char bits = 0;
    for (; m_at != m_end; ++m_at) {
        const char c = *m_at;
        if (c == '"' || c == '\\')
            return {start, static_cast<int>(m_at - start), (bits & 0x80) == 0};
        bits = static_cast<char>(bits | c);
    }
    fail(QJsonParseError::UnterminatedString);
}

QString Reader::textOf(const Run &run)
{
    return run.ascii ? QString::fromLatin1(run.bytes, run.size) : decodeUtf8(run.bytes, run.size);
}

void Reader::appendEscape(QString &text)
{
    static constexpr char letters[] = "\"\\/bfnrt";
    static constexpr char characters[] = "\"\\/\b\f\n\r\t";
    ++m_at;
    if (m_at == m_end)
        fail(QJsonParseError::UnterminatedString);
    if (*m_at == 'u') {
        ++m_at;
        appendUnicodeEscape(text);
        return;
    }
    const char *letter = *m_at ? std::strchr(letters, *m_at) : nullptr;
    if (!letter)
        fail(QJsonParseError::IllegalEscape);
    text += QLatin1Char(characters[letter - letters]);
    ++m_at;
}

void Reader::appendUnicodeEscape(QString &text)
{
    const QChar unit = readHex();
    if (!unit.isSurrogate()) {
        text += unit;
        return;
    }
    const char *afterUnit = m_at;
    if (unit.isHighSurrogate() && m_end - m_at > 2 && m_at[0] == '\\' && m_at[1] == 'u') {
        m_at += 2;
        const QChar second = readHex();
        if (second.isLowSurrogate()) {
            text += unit;
            text += second;
            return;
        }
    }
    m_at = afterUnit;
    text += QChar(QChar::ReplacementCharacter);
}

ushort Reader::readHex()
{
    int code = 0;
    for (int i = 0; i < 4; ++i, ++m_at) {
        const int digit = hexValue(peek());
        if (digit < 0)
            fail(m_at == m_end ? QJsonParseError::UnterminatedString : QJsonParseError::IllegalEscape);
        code = code * 16 + digit;
    }
    return static_cast<ushort>(code);
}

} // namespace

std::unique_ptr<QJsonRoot> parse(const QByteArray &text, QJsonParseError *error)
{
    QJsonParseError problem;
    std::unique_ptr<QJsonRoot> root;
    try {
        root = Reader(text).readDocument();
    } catch (const QJsonParseError &raised) {
        problem = raised;
    }
    if (error)
        *error = problem;
    return root;
}

} // namespace json
