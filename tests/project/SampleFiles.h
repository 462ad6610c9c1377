#pragma once

#include <QString>
#include <QStringList>

/// A project and settings full of texts beyond ASCII, for every generation of the toolkit to write and to read.
namespace SampleFiles {

/// The paths of what write() makes, from its folder.
QString projectFile();
QString settingsFile();

bool write(const QString &folder);

/// What is not read from a folder's files as write() wrote it.
QStringList differences(const QString &folder);

} // namespace SampleFiles
