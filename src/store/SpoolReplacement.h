#pragma once

#include "store/SpoolFile.h"

/// Sets a damaged spool file aside and puts one with @p content in its place. Ended at any point, this is done by
/// finishSpoolReplacement() at the next opening, or begun anew. Returns where the old file is, or nothing and the
/// reason.
QString replaceSpool(const QString &path, const SpoolFile::Change &content, QString *error);

/// Ends what an earlier run has begun. Returns where the old file is; nothing where there was nothing to do.
QString finishSpoolReplacement(const QString &path);
