#pragma once

#include <QStringList>

/// Renames a file that is damaged to the first free PATH.WORD-1, -2 …, together with the files beside it whose names
/// end in one of @p endings. Returns the new name, or an empty text when any of them had to stay: then all have.
QString setAside(const QString &path, const QString &word, const QStringList &endings = {});
