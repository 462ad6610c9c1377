#include "app/TerminationSignals.h"

// Windows asks a program with a window through that window and through its session, which the toolkit passes on; what
// comes as a signal elsewhere does not come here.

class TerminationSignals::Private
{
};

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent) {}

TerminationSignals::~TerminationSignals() = default;

bool TerminationSignals::wasRequested() const
{
    return false;
}
