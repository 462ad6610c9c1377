#pragma once

#include <memory>

/// Tells an object's destructor whether one of its transport's signals is still on the call stack. A transport that is
/// deleted inside its own signal is used after its end; one that is not can go at once. Outlives its owner.
class SignalDepth
{
public:
    /// Hold one while handling a signal of the transport.
    class Scope
    {
    public:
        explicit Scope(const SignalDepth &depth) : m_count(depth.m_count) { ++*m_count; }
        ~Scope() { --*m_count; }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        std::shared_ptr<int> m_count;
    };

    bool isInside() const { return *m_count > 0; }

private:
    std::shared_ptr<int> m_count = std::make_shared<int>(0);
};

/// Deletes a child that has been silenced and closed: at once, or from the event loop while @p depth is inside its
/// signal.
template <typename Transport>
void releaseTransport(Transport *transport, const SignalDepth &depth)
{
    if (depth.isInside()) {
        transport->setParent(nullptr);
        transport->deleteLater();
    } else {
        delete transport;
    }
}
