#include "app/DisplayGuard.h"

#include <QString>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int noDisplayError = 1;

QtMessageHandler handlerBefore = nullptr;

/// Nothing has been made yet that would have to be taken down.
[[noreturn]] void refuse()
{
    std::fputs("Sorvanto Lite cannot start: there is no display that it can use.\n", stderr);
    std::_Exit(noDisplayError);
}

void passOn(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg)
        refuse();
    handlerBefore(type, context, text);
}

} // namespace

DisplayGuard::DisplayGuard()
{
    handlerBefore = qInstallMessageHandler(passOn);
}

DisplayGuard::~DisplayGuard()
{
    qInstallMessageHandler(handlerBefore);
}
