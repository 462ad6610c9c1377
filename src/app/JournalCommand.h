#pragma once

#include <QString>

/// What the command line asks of a journal; prints to the standard output.
struct JournalCommand
{
    enum Action { Print, PrintJson, Verify };
    Action action = Print;
    QString file;

    /// The exit code: 0 for a whole chain, 1 for a broken one, which Verify alone looks at; 3 for a file that cannot
    /// be read. There must be an application object.
    int run() const;
};
