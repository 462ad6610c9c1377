#pragma once

#include <QtGlobal>
#include <vector>

namespace loggersim {

/// Makes a listening socket deaf: its queue of connections is kept full, so that the system answers no further attempt,
/// as if the host were gone. The port has to be opened anew after that.
class PortBlocker
{
public:
    explicit PortBlocker(qintptr listeningSocket);
    ~PortBlocker();
    PortBlocker(const PortBlocker &) = delete;
    PortBlocker &operator=(const PortBlocker &) = delete;

private:
    std::vector<int> m_fillers;
};

} // namespace loggersim
