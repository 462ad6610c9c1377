#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// What bytes beyond ASCII mean in an INI file.
enum class IniEncoding {
    Text, ///< UTF-8, as the one generation of the toolkit writes it, or else Latin-1, as the other
    Bytes ///< a character each
};

/// The texts of a value: those between its commas, or one when there is no comma outside of quotes.
QStringList iniTexts(const QByteArray &value, IniEncoding encoding = IniEncoding::Text);

/// @p text as it has to stand in an INI file: in ASCII, which every generation of the toolkit reads alike.
QByteArray iniEscaped(const QString &text);
