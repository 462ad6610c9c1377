#pragma once

#include <QString>

/// The line a sibling program is started with: its name and the project file in single quotes. Siblings join their
/// arguments with a blank and strip that pair of quotes.
QString siblingCommandLine(const QString &program, const QString &projectFile);

/// Starts a sibling on a project, detached. It is looked for beside this program, then where the system finds programs;
/// never in the working folder, where anybody might have put one. False when it cannot be started.
bool startSibling(const QString &program, const QString &projectFile);
