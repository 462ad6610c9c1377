#pragma once

#include <QString>
#include <functional>

/// How the station is to start; as it stands, as the user's settings say.
struct StartOptions
{
    bool autoLoad = true; ///< whether the recent project may be loaded if the settings want it
    QString projectFile;  ///< absolute path of the project to load in any case in its place; empty: none was named
    std::function<bool()> isEndRequested = [] {
        return false;
    };                                                               ///< asked before and while a project is loaded
    std::function<void(const QString &text)> showOnSplash = nullptr; ///< while the station is built; may be null
};

/// What keeps a file from being loaded as a project, in words for the operator; empty when nothing does.
QString projectFileProblem(const QString &path);
