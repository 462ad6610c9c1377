#pragma once

#include <QString>

/// How the station is to start; as it stands, as the user's settings say.
struct StartOptions
{
    bool autoLoad = true; ///< whether the recent project may be loaded if the settings want it
    QString projectFile;  ///< absolute path of the project to load in any case in its place; empty: none was named
};

/// What keeps a file from being loaded as a project, in words for the operator; empty when nothing does.
QString projectFileProblem(const QString &path);
