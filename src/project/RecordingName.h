#pragma once

#include <QString>

/// Why a text from a project file cannot be the name of a recording beside it: the end of a sentence that begins with
/// what the text is. Empty for the name of a file, and for the name that a project lacks.
QString recordingNameProblem(const QString &name);

/// The other project in the folder of @p projectFile that records, or would, into @p recording; empty for none.
QString otherProjectWithRecording(const QString &recording, const QString &projectFile);
