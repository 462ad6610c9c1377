#pragma once

#include "app/StationState.h"

/// Which menu entries are enabled.
struct ActionStates
{
    bool addDelete = false;
    bool close = false;
    bool keepAlive = false;
    bool refreshDevices = false;
    bool exit = false;
    bool siblings = false; ///< Lookback and the reports
    bool expansionMode = false;
};

ActionStates actionStates(const StationState &state, int intervalMs);
