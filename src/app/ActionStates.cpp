#include "app/ActionStates.h"

namespace {

// Above this interval a link is closed after every reply, so keeping it open cannot be offered.
constexpr int longestKeepAliveIntervalMs = 60000;

} // namespace

ActionStates actionStates(const ControllerState &state)
{
    ActionStates actions;
    actions.addDelete = state.projectOpen && !state.recording;
    actions.close = (state.projectCreated || state.projectOpen) && !state.recording;
    actions.keepAlive = !state.projectCreated || state.intervalMs <= longestKeepAliveIntervalMs;
    actions.refreshDevices = state.projectOpen;
    actions.exit = !state.recording;
    actions.siblings = state.projectOpen;
    actions.expansionMode = state.projectOpen;
    return actions;
}
