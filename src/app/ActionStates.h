#pragma once

/// What decides which actions an operator may use.
struct ControllerState
{
    bool projectCreated = false; ///< a project has a name; its devices may still be chosen
    bool projectOpen = false;
    bool recording = false;
    int intervalMs = 0;
};

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

ActionStates actionStates(const ControllerState &state);
