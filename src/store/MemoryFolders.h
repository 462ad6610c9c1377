#pragma once

#include <QStringList>

/// Folders of this user's own whose files are in memory and outlive the program: where one is killed they keep what it
/// wrote, and writing never waits for a disk. The preferred one first; made where there is none. May be empty.
QStringList memoryFolders();
