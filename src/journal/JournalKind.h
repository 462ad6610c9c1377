#pragma once

#include <QString>

/// What can happen to a station and its loggers. A further kind is a name here and a word in the table beside it.
enum class JournalKind {
    ProgramStarted,
    ProgramEnded,
    ProjectOpened,
    ProjectClosed,
    RecordingStarted,
    RecordingStopped,
    LoggerConnected,
    LoggerLost,
    AlarmBegan,
    AlarmEnded,
    LimitsChanged,
    BuzzerChanged,
    SettingsRefused,
    NameChanged,
    UnitChanged,
    DeviceAdded,
    DeviceRemoved,
    WritingFailed,
    WritingRestored,
    RowsReplayed,
    RowsDropped,
    RowsSalvaged,
    ClockJumped,
    JournalSetAside,
    EntriesDropped
};

/// The word that stands for it in files, the same for ever.
QString journalWord(JournalKind kind);
