#pragma once

#include <QtGlobal>
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

/// An address whose queue of connections is full: further ones are neither accepted nor refused.
class FullBacklog
{
public:
    FullBacklog()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto *raw = reinterpret_cast<sockaddr *>(&address);
        socklen_t size = sizeof address;
        m_listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        bind(m_listening, raw, size);
        listen(m_listening, 0);
        getsockname(m_listening, raw, &size);
        m_port = ntohs(address.sin_port);
        for (int &waiting : m_waiting) {
            waiting = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
            connect(waiting, raw, size);
        }
    }
    ~FullBacklog()
    {
        for (const int waiting : m_waiting)
            close(waiting);
        close(m_listening);
    }
    FullBacklog(const FullBacklog &) = delete;
    FullBacklog &operator=(const FullBacklog &) = delete;

    quint16 port() const { return m_port; }

private:
    int m_listening = -1;
    int m_waiting[4] = {-1, -1, -1, -1};
    quint16 m_port = 0;
};
