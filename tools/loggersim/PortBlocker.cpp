#include "loggersim/PortBlocker.h"

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace loggersim {

namespace {

/// More than a queue of length 0 ever takes.
constexpr int fillersMax = 8;

} // namespace

PortBlocker::PortBlocker(qintptr listeningSocket)
{
    const int listener = static_cast<int>(listeningSocket);
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    auto *target = reinterpret_cast<sockaddr *>(&address);
    if (::listen(listener, 0) != 0 || ::getsockname(listener, target, &length) != 0)
        return;
    for (int i = 0; i < fillersMax; ++i) {
        const int filler = ::socket(address.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (filler < 0)
            return;
        m_fillers.push_back(filler);
        // A loopback connection stands at once; the first one left waiting shows that the queue is full.
        if (::connect(filler, target, length) != 0 && errno == EINPROGRESS)
            return;
    }
}

PortBlocker::~PortBlocker()
{
    for (const int filler : m_fillers)
        ::close(filler);
}

} // namespace loggersim
