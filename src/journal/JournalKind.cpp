#include "journal/JournalKind.h"

QString journalWord(JournalKind kind)
{
    switch (kind) {
    case JournalKind::ProgramStarted:
        return QStringLiteral("program-started");
    case JournalKind::ProgramEnded:
        return QStringLiteral("program-ended");
    case JournalKind::ProjectOpened:
        return QStringLiteral("project-opened");
    case JournalKind::ProjectClosed:
        return QStringLiteral("project-closed");
    case JournalKind::RecordingStarted:
        return QStringLiteral("recording-started");
    case JournalKind::RecordingStopped:
        return QStringLiteral("recording-stopped");
    case JournalKind::LoggerConnected:
        return QStringLiteral("logger-connected");
    case JournalKind::LoggerLost:
        return QStringLiteral("logger-lost");
    case JournalKind::AlarmBegan:
        return QStringLiteral("alarm-began");
    case JournalKind::AlarmEnded:
        return QStringLiteral("alarm-ended");
    case JournalKind::LimitsChanged:
        return QStringLiteral("limits-changed");
    case JournalKind::BuzzerChanged:
        return QStringLiteral("buzzer-changed");
    case JournalKind::SettingsRefused:
        return QStringLiteral("settings-refused");
    case JournalKind::NameChanged:
        return QStringLiteral("name-changed");
    case JournalKind::UnitChanged:
        return QStringLiteral("unit-changed");
    case JournalKind::DeviceAdded:
        return QStringLiteral("device-added");
    case JournalKind::DeviceRemoved:
        return QStringLiteral("device-removed");
    case JournalKind::WritingFailed:
        return QStringLiteral("writing-failed");
    case JournalKind::WritingRestored:
        return QStringLiteral("writing-restored");
    case JournalKind::RowsReplayed:
        return QStringLiteral("rows-replayed");
    case JournalKind::RowsDropped:
        return QStringLiteral("rows-dropped");
    case JournalKind::RowsSalvaged:
        return QStringLiteral("rows-salvaged");
    case JournalKind::ClockJumped:
        return QStringLiteral("clock-jumped");
    case JournalKind::JournalSetAside:
        return QStringLiteral("journal-set-aside");
    case JournalKind::EntriesDropped:
        return QStringLiteral("entries-dropped");
    }
    return {};
}
