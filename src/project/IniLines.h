#pragma once

#include <QByteArray>
#include <QString>

/// Goes through the lines of an INI text. Blank lines and comments are passed over. A line may reach over several lines
/// of the file, by a quotation or an escaped line end.
class IniLines
{
public:
    explicit IniLines(const QByteArray &text);

    /// Goes to the next line; false behind the last one.
    bool next();

    /// Where the line stands, without its end.
    int start() const { return m_start; }
    int end() const { return m_end; }
    /// The text ends inside the line: what is put behind it would belong to it.
    bool isOpen() const { return m_isOpen; }
    bool isHeader() const;
    /// Behind the "=" of a line that has one; else 0.
    int valueStart() const { return m_equals < 0 ? 0 : m_equals + 1; }
    /// The section of the line, "group/"; empty for [General] and where no header was yet.
    QString section() const { return m_section; }
    /// The key within its section.
    QString name() const;
    /// Whether the line gives @p key its value.
    bool sets(const QString &key) const;

private:
    void passOver();
    void findEnd();
    void enterSection();

    const QByteArray m_text;
    int m_at = 0;
    int m_start = 0;
    int m_end = 0;
    int m_equals = -1;
    bool m_isOpen = false;
    QString m_section;
};
