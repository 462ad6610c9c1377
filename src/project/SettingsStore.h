#pragma once

#include "project/AppSettings.h"

#include <QLockFile>

/// One user's settings where the platform keeps them: a file in INI form, or the registry. While one of these lives,
/// the user's other stations wait for a moment before they make one: what is read can be changed and written.
class SettingsStore
{
public:
    SettingsStore();

    static void read(AppSettings &settings);
    /// False when the store is as it was.
    bool write(const AppSettings &settings);
    bool writeFlags(const AppSettings &settings);

private:
    QLockFile m_lock; ///< a store that cannot be locked is written all the same
};
