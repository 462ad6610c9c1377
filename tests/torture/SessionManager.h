#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QSocketNotifier;

/// A session manager (XSMP) as a desktop has one: programs that are started with its address report to it, and it ends
/// the session.
class SessionManager
{
public:
    SessionManager();
    ~SessionManager();
    SessionManager(const SessionManager &) = delete;
    SessionManager &operator=(const SessionManager &) = delete;

    bool start();
    /// For SESSION_MANAGER in the environment of programs.
    QString address() const;
    /// Whether a program has reported and is settled.
    bool hasClient() const;
    /// Asks the programs to save what they have, and then to go, as at a log-out.
    void endSession();

private:
    class Private;
    std::unique_ptr<Private> d;
};
