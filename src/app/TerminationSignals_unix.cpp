#include "app/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler may do little more than write to a pipe; the event loop reads the other end.
std::array<int, 2> signalPipe{-1, -1};
// Read also where no event loop runs.
volatile std::sig_atomic_t isRequested = 0;

constexpr std::array<int, 3> handledSignals{SIGTERM, SIGINT, SIGHUP};

void writeToPipe(int)
{
    const int errorBefore = errno;
    isRequested = 1;
    const char byte = 0;
    // A full pipe already holds a request, so a failed write loses nothing.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = errorBefore;
}

/// Started to outlive its terminal, as nohup does it.
bool outlivesItsTerminal()
{
    struct sigaction action = {};
    return ::sigaction(SIGHUP, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (int number : handledSignals) {
        if (number != SIGHUP || !outlivesItsTerminal())
            ::sigaction(number, &action, nullptr);
    }
}

} // namespace

class TerminationSignals::Private
{
public:
    std::unique_ptr<QSocketNotifier> notifier;
};

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    if (::pipe2(signalPipe.data(), O_NONBLOCK | O_CLOEXEC) != 0)
        return;
    d->notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(d->notifier.get(), &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (::read(signalPipe[0], bytes, sizeof(bytes)) > 0) {
        }
        emit terminationRequested();
    });
    isRequested = 0;
    setHandler(writeToPipe);
    // Whoever read the diagnostics may leave; that must not end a recording.
    std::signal(SIGPIPE, SIG_IGN);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL);
    d->notifier.reset();
    for (int &end : signalPipe) {
        if (end != -1)
            ::close(end);
        end = -1;
    }
}

bool TerminationSignals::wasRequested() const
{
    return isRequested != 0;
}
