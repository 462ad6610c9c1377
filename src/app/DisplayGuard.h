#pragma once

#include <QtGlobal>

/// Stands by while the application object is made: where the toolkit would abort for want of a display, the program
/// says so in a sentence and ends with an exit code. One at a time.
class DisplayGuard
{
public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard &) = delete;
    DisplayGuard &operator=(const DisplayGuard &) = delete;
};
