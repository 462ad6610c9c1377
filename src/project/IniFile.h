#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QVariant>

class QSettings;

/// Keys and values in the order of writing; an invalid value removes its key.
using IniValues = QList<QPair<QString, QVariant>>;

void setValues(QSettings &settings, const IniValues &values);

/// Puts a file with @p content in place of the one at @p path, or leaves that as it was.
bool replaceFile(const QString &path, const QByteArray &content);

/// Sets values of a settings file in INI form, or makes the file, in a folder that exists. The file is replaced as a
/// whole; when that fails it stays as it was.
bool rewriteIniFile(const QString &path, const IniValues &values);
