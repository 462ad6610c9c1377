#pragma once

#include "project/IniText.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <optional>

/// Keys and values in the order of writing.
using IniValues = QList<QPair<QString, IniValue>>;

/// Nothing when there is no such file, when it cannot be read or when it is larger than any that a station writes.
std::optional<IniText> readIniFile(const QString &path);

/// Puts a file with @p content in place of the one at @p path, or leaves that as it was.
bool replaceFile(const QString &path, const QByteArray &content);

/// Sets values of a settings file in INI form, or makes the file, in a folder that exists. The file is replaced as a
/// whole; when that fails it stays as it was.
bool rewriteIniFile(const QString &path, const IniValues &values);
