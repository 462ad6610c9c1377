#include "loggersim/SignalWatch.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace loggersim {

namespace {

constexpr std::array<int, 2> watched{SIGTERM, SIGINT};
std::array<int, 2> pipeEnds{-1, -1};
std::array<struct sigaction, 2> previous;

struct Received
{
    int number;
    bool fromTerminal;
};

// Runs between any two instructions of the program, so it may only write the news into the pipe.
void handle(int number, siginfo_t *info, void *)
{
    const int savedError = errno;
    const Received received{number, info->si_code == SI_KERNEL};
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &received, sizeof received);
    errno = savedError;
}

} // namespace

SignalWatch::SignalWatch(QObject *parent) : QObject(parent)
{
    if (::pipe(pipeEnds.data()) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { slotReadable(); });
    struct sigaction action
    {
    };
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    for (size_t i = 0; i < watched.size(); ++i)
        ::sigaction(watched[i], &action, &previous[i]);
}

SignalWatch::~SignalWatch()
{
    if (!m_notifier)
        return;
    for (size_t i = 0; i < watched.size(); ++i)
        ::sigaction(watched[i], &previous[i], nullptr);
    m_notifier.reset();
    for (int &end : pipeEnds)
        ::close(std::exchange(end, -1));
}

void SignalWatch::slotReadable()
{
    Received news{};
    if (::read(pipeEnds[0], &news, sizeof news) == sizeof news)
        emit received(news.number, news.fromTerminal);
}

} // namespace loggersim
