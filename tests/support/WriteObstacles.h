#pragma once

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>

/// While it lives, no file of this process can grow beyond a size, as on a disk that is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t largestFile) : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_oldLimit);
        rlimit limit = m_oldLimit;
        limit.rlim_cur = largestFile;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_oldLimit);
        std::signal(SIGXFSZ, m_oldHandler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    void (*m_oldHandler)(int);
    rlimit m_oldLimit{};
};

/// While it lives, the superuser is an ordinary user whom file permissions stop; without effect for anybody else.
class OrdinaryUser
{
public:
    OrdinaryUser() { m_active = geteuid() == 0 && seteuid(65534) == 0; }
    ~OrdinaryUser()
    {
        if (m_active && seteuid(0) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    bool m_active = false;
};
