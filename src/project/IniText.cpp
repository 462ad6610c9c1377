#include "project/IniText.h"

#include "project/IniLines.h"

#include <algorithm>

namespace {

const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");

/// "group/", or an empty text for the section [General].
QString sectionOf(const QString &key)
{
    return key.left(key.indexOf(QLatin1Char('/')) + 1);
}

} // namespace

/// Puts a text in place of what stands from the one place to the other.
struct IniText::Edit
{
    int from;
    int to;
    QByteArray text;
};

/// Where a key stands, and where it might.
struct IniText::Places
{
    struct Line
    {
        int start;
        int end;
        bool isInSection; ///< in the one of its own, not as "group\key" in another
    };
    std::vector<Line> lines;
    int insertAt = -1;    ///< behind the line that it would follow; negative when its section is missing
    bool isFirst = false; ///< it would follow none
};

IniText::IniText(const QByteArray &text) : m_text(text) {}

QByteArray IniText::toBytes() const
{
    return m_text;
}

IniValue IniText::value(const QString &key) const
{
    IniValue found;
    IniLines line(m_text);
    while (line.next()) {
        if (line.sets(key))
            found = IniValue(m_text.mid(line.valueStart(), line.end() - line.valueStart()));
    }
    return found;
}

void IniText::setValue(const QString &key, const IniValue &value)
{
    const QString section = sectionOf(key);
    const QByteArray line = key.mid(section.size()).toLatin1() + '=' + value.raw();
    const Places places = placesOf(key);
    bool isSet = false;
    std::vector<Edit> edits;
    for (const Places::Line &old : places.lines) {
        if (old.isInSection && !isSet)
            edits.push_back({old.start, old.end, line});
        else
            edits.push_back({old.start, behindLineEnd(old.end), {}});
        isSet = isSet || old.isInSection;
    }
    if (!isSet && places.insertAt >= 0) {
        QByteArray text = places.isFirst ? line + lineEnd() : lineEnd() + line;
        if (places.insertAt == m_text.size())
            text += lineEnd();
        const auto isBefore = [](const Edit &edit, int at) {
            return edit.from < at;
        };
        const auto next = std::lower_bound(edits.begin(), edits.end(), places.insertAt, isBefore);
        edits.insert(next, {places.insertAt, places.insertAt, text});
        isSet = true;
    }
    apply(edits);
    if (!isSet)
        addSection(section, line);
}

IniText::Places IniText::placesOf(const QString &key) const
{
    const QString section = sectionOf(key);
    const QString name = key.mid(section.size());
    Places places;
    bool isInSection = section.isEmpty();
    IniLines line(m_text);
    while (line.next()) {
        if (line.isHeader()) {
            // The first section of the name takes the key; behind a line that does not end there is no room.
            isInSection = places.insertAt < 0 && line.section() == section && !line.isOpen();
            if (isInSection)
                places.insertAt = line.end();
        } else if (line.sets(key)) {
            places.lines.push_back({line.start(), line.end(), line.section() == section});
        } else if (isInSection && places.insertAt < 0) {
            places.insertAt = fileStart();
            places.isFirst = true;
        }
        if (isInSection && !line.isHeader() && !line.isOpen() && line.name() < name) {
            places.insertAt = line.end();
            places.isFirst = false;
        }
    }
    return places;
}

void IniText::apply(const std::vector<Edit> &edits)
{
    QByteArray result;
    int at = 0;
    for (const Edit &edit : edits) {
        result += m_text.mid(at, edit.from - at) + edit.text;
        at = edit.to;
    }
    result += m_text.mid(at);
    m_text = result;
}

/// Makes the section with its first key: [General] at the start of the file, another at its end.
void IniText::addSection(const QString &section, const QByteArray &line)
{
    const QByteArray title = section.isEmpty() ? QByteArrayLiteral("General") : section.chopped(1).toLatin1();
    const QByteArray block = '[' + title + ']' + lineEnd() + line + lineEnd();
    bool endsOpen = false;
    bool startsWithKeys = false;
    bool isEmpty = true;
    for (IniLines old(m_text); old.next(); isEmpty = false) {
        startsWithKeys = startsWithKeys || (isEmpty && !old.isHeader());
        endsOpen = old.isOpen();
    }
    if (section.isEmpty() || endsOpen) {
        const bool isAlone = fileStart() == m_text.size();
        m_text.insert(fileStart(), block + (startsWithKeys ? lineEnd() + "[General]" + lineEnd()
                                            : isAlone      ? QByteArray()
                                                           : lineEnd()));
        return;
    }
    if (!m_text.isEmpty() && !m_text.endsWith('\n'))
        m_text += lineEnd();
    m_text += (m_text.isEmpty() ? QByteArray() : lineEnd()) + block;
}

int IniText::fileStart() const
{
    return m_text.startsWith(byteOrderMark) ? int(byteOrderMark.size()) : 0;
}

/// Behind the end of the line that ends at @p at, unless a comment follows it.
int IniText::behindLineEnd(int at) const
{
    const int size = int(m_text.size());
    if (at < size && m_text.at(at) == '\r')
        ++at;
    if (at < size && m_text.at(at) == '\n')
        ++at;
    return at;
}

QByteArray IniText::lineEnd() const
{
    const auto at = m_text.indexOf('\n');
    return at > 0 && m_text.at(at - 1) == '\r' ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\n");
}
