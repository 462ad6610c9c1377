#pragma once

#include <QByteArray>
#include <QString>

/// Tells the file at a path from another one that is put in its place later; empty when there is no file. Where the
/// system keeps an open file from being deleted or replaced, all files are the same.
QByteArray fileIdentity(const QString &path);
