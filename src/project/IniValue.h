#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

/// The value of a key as it stands in an INI file, in the toolkit's form. Only the types below are known: the toolkit
/// puts any object into such a file, and what it makes of a crafted one has no bounds. A value of another type reads
/// like none.
class IniValue
{
public:
    using TextMap = QMap<QString, QString>;

    IniValue() = default; ///< no value
    explicit IniValue(const QByteArray &raw);

    static IniValue fromText(const QString &text);
    static IniValue fromTexts(const QStringList &texts);
    static IniValue fromBytes(const QByteArray &bytes);
    static IniValue fromNumber(qlonglong number);
    static IniValue fromFlag(bool flag);
    static IniValue fromTextMap(const TextMap &map);

    bool isPresent() const;
    /// As it has to stand in the file.
    QByteArray raw() const;

    /// Empty for a list.
    QString toText() const;
    QStringList toTexts() const;
    QByteArray toBytes() const;
    /// 0 for what is no number.
    qlonglong toNumber() const;
    bool toFlag() const;
    /// As much of a damaged map as can be read.
    TextMap toTextMap() const;

private:
    std::optional<QByteArray> bytesBehind(const QString &mark) const;

    std::optional<QByteArray> m_raw;
};
