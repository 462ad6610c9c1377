#pragma once

#include "device/DeviceWitness.h"
#include "journal/ClockWatch.h"
#include "journal/JournalEvent.h"
#include "project/DeviceEntry.h"

#include <QDate>
#include <QList>
#include <QObject>
#include <functional>
#include <memory>

class EventJournal;
class InsertSerialData;
struct OpeningReport;

/// Turns what the station and its devices do into entries of the open project's journal. Without one that is open
/// nothing is kept.
class StationJournal : public QObject, private DeviceWitness
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    explicit StationJournal(QObject *parent = nullptr);
    ~StationJournal() override;

    /// Replaces the source of the time of entries.
    void setClock(const Clock &clock) { m_clock = clock; }

    /// Nothing while the journal of that recording is open already.
    void openProject(const QString &recording, const QString &projectFile);
    /// Closes the journal, with the end of the program if that is what comes.
    void closeProject();
    /// The next project to be closed is closed because the program ends.
    void programEnds() { m_programEnds = true; }

    /// These are the project's devices, and nothing about them is new.
    void knowDevices(const QList<ConfiguredDevice *> &devices);
    /// Tells what has become different about the devices since the last call, and watches those that have come.
    void compareDevices(const QList<ConfiguredDevice *> &devices);
    /// Listens to what becomes of the readings.
    void watch(const InsertSerialData &store);

    /// What the opening of the recording has brought back.
    void rowsSaved(const OpeningReport &report);
    /// It could not be opened at all.
    void recordingFailed(const QString &reason);

    void setRecording(bool on);
    /// To be called every second: notices that the clock was set and that a day has ended.
    void lookAtClock();

signals:
    /// What the operator has to know; a sentence.
    void told(const QString &sentence);

private:
    void loggerConnected(const ConfiguredDevice &device) override;
    void loggerLost(const ConfiguredDevice &device, LossReason reason) override;
    void alarmChanged(const ConfiguredDevice &device, const AlarmChange &change) override;
    void exchangeFailed(const ConfiguredDevice &device, const QString &reason) override;

    void slotWritingFailed(const QString &reason);
    void slotWritingRestored();
    void slotReadingsDropped(int count);
    void append(JournalEvent event);
    void connectJournal();
    void logHead() const;

    Clock m_clock;
    const QDateTime m_programStart;
    bool m_startIsTold = false;
    bool m_programEnds = false;
    bool m_isRecording = false;
    int m_mostRowsWaiting = 0;
    QString m_path;
    std::unique_ptr<EventJournal> m_journal;
    QList<DeviceEntry> m_knownDevices;
    ClockWatch m_clockWatch;
    QDate m_day;
};
