#pragma once

#include "project/IniValue.h"

#include <QByteArray>
#include <QString>
#include <vector>

/// The text of an INI file in the toolkit's form: "key" is a key of the section [General], "group/key" one of the
/// section [group]. What is not set stays as it stands: other keys and sections, comments, and what is no line of an
/// INI file at all.
class IniText
{
public:
    explicit IniText(const QByteArray &text = {});

    /// The last one when the key is there several times; no value when it is missing.
    IniValue value(const QString &key) const;
    /// A new key takes its place in alphabetical order. Keys are the program's own, of letters that need no escape.
    void setValue(const QString &key, const IniValue &value);
    QByteArray toBytes() const;

private:
    struct Edit;
    struct Places;

    Places placesOf(const QString &key) const;
    void apply(const std::vector<Edit> &edits);
    void addSection(const QString &section, const QByteArray &line);
    int fileStart() const;
    int behindLineEnd(int at) const;
    QByteArray lineEnd() const;

    QByteArray m_text;
};
