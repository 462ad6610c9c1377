#pragma once

/// Where the station stands. One state at a time; everything else that depends on it is asked of it.
class StationState
{
public:
    enum Name {
        StartScreen, ///< no project
        Creating,    ///< a new project has its name, its devices are being chosen
        Open,
        Recording, ///< open, and every reading is recorded
        Editing,   ///< the devices of a project are being chosen anew
        Ending     ///< the program ends, whatever is still on the screen; there is no way back
    };

    Name name() const { return m_name; }
    /// Whether there is a project, open or not.
    bool hasProject() const { return m_name != StartScreen && m_name != Ending; }
    bool isProjectOpen() const { return m_name == Open || m_name == Recording; }
    bool isRecording() const { return m_name == Recording; }
    bool isEnding() const { return m_name == Ending; }

    /// Staying is always possible. A recording has to be stopped before anything else can happen, the end included.
    bool canBecome(Name next) const;
    /// False, and nothing changes, when there is no way from here to there.
    bool become(Name next);

private:
    Name m_name = StartScreen;
};
