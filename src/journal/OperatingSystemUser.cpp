#include "journal/OperatingSystemUser.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <array>
#include <pwd.h>
#include <unistd.h>
#endif

QString operatingSystemUser()
{
#ifdef Q_OS_UNIX
    // The environment may say what it likes; the system knows.
    std::array<char, 16384> texts{};
    passwd user{};
    passwd *found = nullptr;
    if (getpwuid_r(geteuid(), &user, texts.data(), texts.size(), &found) == 0 && found)
        return QString::fromLocal8Bit(found->pw_name);
    return QString::number(geteuid());
#else
    return qEnvironmentVariable("USERNAME");
#endif
}
