#include "app/StationState.h"

bool StationState::canBecome(Name next) const
{
    if (next == m_name)
        return true;
    switch (m_name) {
    case StartScreen:
        return next == Creating || next == Open || next == Ending;
    case Creating:
    case Editing:
        return next == Open || next == StartScreen || next == Ending;
    case Open:
        return next == Recording || next == Editing || next == StartScreen || next == Ending;
    case Recording:
        return next == Open;
    case Ending:
        return false;
    }
    return false;
}

bool StationState::become(Name next)
{
    if (!canBecome(next))
        return false;
    m_name = next;
    return true;
}
