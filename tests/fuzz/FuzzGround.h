#pragma once

#include <QByteArray>
#include <QString>

class FuzzInput;

/// What every target stands on: the application object, a folder that is empty at first, silence in the log.

/// Ends the program, which is a finding, unless it holds.
void require(bool holds, const char *what);

/// The path of a file of that name in the target's own folder.
QString fuzzFile(const char *name);
void removeFuzzFiles();
void writeFile(const QString &path, const QByteArray &content);
/// Empty for a file that is not there.
QByteArray contentOf(const QString &path);

/// A file that was whole, as damage of every kind leaves it: bytes changed, sectors zeroed or stale, its end cut off.
QByteArray damaged(QByteArray whole, FuzzInput &input);
