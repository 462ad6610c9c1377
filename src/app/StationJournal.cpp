#include "app/StationJournal.h"

#include "app/DeviceChanges.h"
#include "app/Logging.h"
#include "app/StartUp.h"
#include "journal/EventJournal.h"
#include "journal/JournalPath.h"
#include "journal/SteadyTime.h"
#include "store/InsertSerialData.h"
#include "store/PendingRow.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

namespace {

JournalEvent eventOf(JournalKind kind, const ConfiguredDevice &device)
{
    JournalEvent event{kind};
    event.key = device.serialNumber();
    return event;
}

QString lossText(LossReason reason)
{
    switch (reason) {
    case LossReason::NoAnswer:
        return QStringLiteral("It gave no answers.");
    case LossReason::LinkFailed:
        return QStringLiteral("Its link failed.");
    case LossReason::Unplugged:
        return QStringLiteral("It was unplugged.");
    case LossReason::Closed:
        return QStringLiteral("The station closed its link.");
    }
    return {};
}

QList<DeviceEntry> entriesOf(const QList<ConfiguredDevice *> &devices)
{
    QList<DeviceEntry> entries;
    for (const ConfiguredDevice *device : devices)
        entries.append(entryOf(*device));
    return entries;
}

} // namespace

StationJournal::StationJournal(QObject *parent)
    : QObject(parent),
      m_clock([] { return QDateTime::currentDateTime(); }),
      m_programStart(QDateTime::currentDateTime())
{
}

StationJournal::~StationJournal() = default;

void StationJournal::openProject(const QString &recording, const QString &projectFile)
{
    if (m_journal)
        return;
    m_path = journalPath(recording);
    m_journal = std::make_unique<EventJournal>();
    connectJournal();
    m_journal->open(m_path);
    m_day = m_clock().toLocalTime().date();
    if (!std::exchange(m_startIsTold, true)) {
        JournalEvent start{JournalKind::ProgramStarted};
        start.newText = versionText();
        start.time = m_programStart;
        append(start);
    }
    JournalEvent opened{JournalKind::ProjectOpened};
    opened.newText = versionText();
    opened.text = projectFile;
    append(opened);
}

void StationJournal::connectJournal()
{
    connect(m_journal.get(), &EventJournal::unclean, this, [this](const QDateTime &last) {
        const QString sentence = QStringLiteral("The station was not closed properly the last time; the last entry of "
                                                "its journal is of %1.")
                                     .arg(last.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        qCWarning(lcApp).noquote() << "StationJournal :" << sentence;
        emit told(sentence);
    });
    connect(m_journal.get(), &EventJournal::setAside, this, [this](const QString &path) {
        emit told(QStringLiteral("The journal of events was damaged. It is kept as %1, and a new one was begun.")
                      .arg(QFileInfo(path).fileName()));
    });
    connect(m_journal.get(), &EventJournal::failed, this, [this](const QString &reason) { emit told(reason); });
}

void StationJournal::closeProject()
{
    m_knownDevices.clear();
    if (!m_journal)
        return;
    append({JournalKind::ProjectClosed});
    if (m_programEnds)
        append({JournalKind::ProgramEnded});
    m_journal->close();
    logHead();
    m_journal.reset();
}

void StationJournal::knowDevices(const QList<ConfiguredDevice *> &devices)
{
    m_knownDevices = entriesOf(devices);
}

void StationJournal::compareDevices(const QList<ConfiguredDevice *> &devices)
{
    if (!m_journal)
        return;
    for (ConfiguredDevice *device : devices)
        device->setWitness(this);
    const QList<DeviceEntry> before = std::exchange(m_knownDevices, entriesOf(devices));
    const QList<JournalEvent> changes = deviceChanges(before, m_knownDevices);
    for (const JournalEvent &change : changes)
        append(change);
}

void StationJournal::watch(const InsertSerialData &store)
{
    connect(&store, &InsertSerialData::writingFailed, this, &StationJournal::slotWritingFailed);
    connect(&store, &InsertSerialData::writingRestored, this, &StationJournal::slotWritingRestored);
    connect(&store, &InsertSerialData::readingsDropped, this, &StationJournal::slotReadingsDropped);
}

void StationJournal::rowsSaved(const OpeningReport &report)
{
    const auto appendSaved = [this](JournalKind kind, int rows, const QString &keptFile) {
        if (rows == 0 && keptFile.isEmpty())
            return;
        JournalEvent event{kind};
        event.value = rows;
        if (!keptFile.isEmpty())
            event.text = QFileInfo(keptFile).fileName();
        append(event);
    };
    appendSaved(JournalKind::RowsSalvaged, report.rowsSalvaged, report.tornFile);
    appendSaved(JournalKind::RowsReplayed, report.rowsReplayed, report.damagedSpool);
}

void StationJournal::recordingFailed(const QString &reason)
{
    JournalEvent event{JournalKind::WritingFailed};
    event.text = reason;
    append(event);
}

void StationJournal::setRecording(bool on)
{
    if (std::exchange(m_isRecording, on) != on)
        append({on ? JournalKind::RecordingStarted : JournalKind::RecordingStopped});
}

void StationJournal::lookAtClock()
{
    const QDateTime now = m_clock().toLocalTime();
    const auto jump = m_clockWatch.look(now.toMSecsSinceEpoch(), steadyTimeMs());
    if (jump) {
        JournalEvent event{JournalKind::ClockJumped};
        event.value = double(*jump) / 1000;
        event.oldText = now.addMSecs(-*jump).toString(Qt::ISODateWithMs);
        event.newText = now.toString(Qt::ISODateWithMs);
        append(event);
    }
    if (m_mostRowsWaiting > 0)
        m_mostRowsWaiting = std::max(m_mostRowsWaiting, InsertSerialData::pendingCount());
    if (m_journal && std::exchange(m_day, now.date()) != now.date())
        logHead();
}

void StationJournal::loggerConnected(const ConfiguredDevice &device)
{
    JournalEvent event = eventOf(JournalKind::LoggerConnected, device);
    event.text = device.address();
    append(event);
}

void StationJournal::loggerLost(const ConfiguredDevice &device, LossReason reason)
{
    JournalEvent event = eventOf(JournalKind::LoggerLost, device);
    event.text = lossText(reason);
    append(event);
}

void StationJournal::alarmChanged(const ConfiguredDevice &device, const AlarmChange &change)
{
    JournalEvent event = eventOf(change.isOn ? JournalKind::AlarmBegan : JournalKind::AlarmEnded, device);
    event.channel = change.channel;
    event.low = decimalLimit(change.min);
    event.high = decimalLimit(change.max);
    if (isNoValue(change.value))
        event.text = QStringLiteral("There is no value any more.");
    else
        event.value = change.value;
    append(event);
}

void StationJournal::exchangeFailed(const ConfiguredDevice &device, const QString &reason)
{
    JournalEvent event = eventOf(JournalKind::SettingsRefused, device);
    event.oldText = limitsText(device.alarmRange(), device.buzzerAlarm());
    event.newText = limitsText(device.pendingAlarmRange(), device.pendingBuzzerAlarm());
    event.text = reason;
    append(event);
}

void StationJournal::slotWritingFailed(const QString &reason)
{
    m_mostRowsWaiting = std::max(m_mostRowsWaiting, std::max(1, InsertSerialData::pendingCount()));
    JournalEvent event{JournalKind::WritingFailed};
    event.value = InsertSerialData::pendingCount();
    event.text = reason;
    append(event);
}

void StationJournal::slotWritingRestored()
{
    JournalEvent event{JournalKind::WritingRestored};
    event.value = std::exchange(m_mostRowsWaiting, 0);
    append(event);
}

void StationJournal::slotReadingsDropped(int count)
{
    JournalEvent event{JournalKind::RowsDropped};
    event.value = count;
    append(event);
}

void StationJournal::append(JournalEvent event)
{
    if (!m_journal)
        return;
    if (!event.time.isValid())
        event.time = m_clock();
    m_journal->append(event);
}

/// Whoever has it can tell whether the journal was cut off or made anew since.
void StationJournal::logHead() const
{
    qCInfo(lcApp).noquote() << "Journal of events :" << QFileInfo(m_path).fileName()
                            << ": entries :" << m_journal->entryCount()
                            << ": head :" << QString::fromLatin1(m_journal->head());
}
