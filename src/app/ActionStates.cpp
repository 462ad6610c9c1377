#include "app/ActionStates.h"

namespace {

// Above this interval a link is closed after every reply, so keeping it open cannot be offered.
constexpr int longestKeepAliveIntervalMs = 60000;

} // namespace

ActionStates actionStates(const StationState &state, int intervalMs)
{
    ActionStates actions;
    actions.addDelete = state.name() == StationState::Open;
    actions.close = state.hasProject() && !state.isRecording();
    actions.keepAlive = !state.hasProject() || intervalMs <= longestKeepAliveIntervalMs;
    actions.refreshDevices = state.isProjectOpen();
    actions.exit = !state.isRecording();
    actions.siblings = state.isProjectOpen();
    actions.expansionMode = state.isProjectOpen();
    return actions;
}
