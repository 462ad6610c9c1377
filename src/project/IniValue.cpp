#include "project/IniValue.h"

#include "project/IniEscapes.h"
#include "project/TextMapStream.h"

#include <QByteArrayList>
#include <algorithm>
#include <iterator>
#include <optional>

namespace {

const QString bytesMark = QStringLiteral("@ByteArray(");
const QString textMark = QStringLiteral("@String(");
const QString objectMark = QStringLiteral("@Variant(");

QString marked(const QString &mark, const QByteArray &bytes)
{
    return mark + QString::fromLatin1(bytes.constData(), bytes.size()) + QLatin1Char(')');
}

/// What stands between a mark and the bracket at the end; nothing without them.
std::optional<QString> unmarked(const QString &text, const QString &mark)
{
    const bool isMarked = text.startsWith(mark) && text.endsWith(QLatin1Char(')'));
    return isMarked ? std::optional(text.mid(mark.size()).chopped(1)) : std::nullopt;
}

bool isOfAnotherType(const QString &text)
{
    static const QString marks[] = {objectMark,
                                    QStringLiteral("@DateTime("),
                                    QStringLiteral("@Invalid("),
                                    QStringLiteral("@Point("),
                                    QStringLiteral("@Rect("),
                                    QStringLiteral("@Size(")};
    return std::any_of(std::begin(marks), std::end(marks),
                       [&text](const QString &mark) { return unmarked(text, mark).has_value(); });
}

QString textOf(const QString &text)
{
    if (!text.startsWith(QLatin1Char('@')))
        return text;
    if (const auto bytes = unmarked(text, bytesMark))
        return QString::fromUtf8(bytes->toLatin1());
    if (const auto inner = unmarked(text, textMark))
        return *inner;
    if (isOfAnotherType(text))
        return {};
    return text.startsWith(QLatin1String("@@")) ? text.mid(1) : text;
}

QString withMark(const QString &text)
{
    if (text.contains(QChar(QChar::Null)))
        return textMark + text + QLatin1Char(')');
    return text.startsWith(QLatin1Char('@')) ? QLatin1Char('@') + text : text;
}

} // namespace

IniValue::IniValue(const QByteArray &raw) : m_raw(raw) {}

IniValue IniValue::fromText(const QString &text)
{
    return IniValue(iniEscaped(withMark(text)));
}

IniValue IniValue::fromTexts(const QStringList &texts)
{
    if (texts.isEmpty())
        return IniValue(QByteArrayLiteral("@Invalid()"));
    QByteArrayList raw;
    for (const QString &text : texts)
        raw += iniEscaped(withMark(text));
    return IniValue(raw.join(", "));
}

IniValue IniValue::fromBytes(const QByteArray &bytes)
{
    return IniValue(iniEscaped(marked(bytesMark, bytes)));
}

IniValue IniValue::fromNumber(qlonglong number)
{
    return IniValue(QByteArray::number(number));
}

IniValue IniValue::fromFlag(bool flag)
{
    return IniValue(flag ? QByteArrayLiteral("true") : QByteArrayLiteral("false"));
}

IniValue IniValue::fromTextMap(const TextMap &map)
{
    return IniValue(iniEscaped(marked(objectMark, textMapToStream(map))));
}

bool IniValue::isPresent() const
{
    return m_raw.has_value();
}

QByteArray IniValue::raw() const
{
    return m_raw.value_or(QByteArray());
}

QString IniValue::toText() const
{
    const QStringList texts = iniTexts(raw());
    return texts.size() == 1 ? textOf(texts.first()) : QString();
}

QStringList IniValue::toTexts() const
{
    QStringList texts = m_raw ? iniTexts(*m_raw) : QStringList();
    if (texts.size() == 1 && isOfAnotherType(texts.first()))
        return {};
    for (QString &text : texts)
        text = textOf(text);
    return texts;
}

QByteArray IniValue::toBytes() const
{
    const auto bytes = bytesBehind(bytesMark);
    return bytes ? *bytes : toText().toUtf8();
}

qlonglong IniValue::toNumber() const
{
    return toText().toLongLong();
}

bool IniValue::toFlag() const
{
    const QString text = toText().toLower();
    return !text.isEmpty() && text != QLatin1String("0") && text != QLatin1String("false");
}

IniValue::TextMap IniValue::toTextMap() const
{
    return textMapFromStream(bytesBehind(objectMark).value_or(QByteArray()));
}

std::optional<QByteArray> IniValue::bytesBehind(const QString &mark) const
{
    const QStringList texts = iniTexts(raw(), IniEncoding::Bytes);
    const auto inner = texts.size() == 1 ? unmarked(texts.first(), mark) : std::nullopt;
    return inner ? std::optional(inner->toLatin1()) : std::nullopt;
}
