#include "app/SorvantoMain.h"

#include "app/Logging.h"
#include "app/OpeningProgress.h"
#include "device/ConfiguredDevice.h"
#include "project/ProjectFile.h"
#include "store/InsertSerialData.h"
#include "store/RecordedRange.h"
#include "ui_SorvantoMain.h"
#include "views/ProjectCenter.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMessageBox>
#include <QTimer>

namespace {

constexpr int writeDbTimerMs = 1500;

// Rows are written in batches; a lone logger would otherwise wait too long for its first one.
constexpr int batchOfOneDevice = 8;
constexpr int batchOfSeveralDevices = 16;

const QString readOnlyReason =
    QStringLiteral("The recording is write-protected. It can be looked at, but nothing can be recorded.");

QString localTimeText(quint32 unixSeconds)
{
    if (unixSeconds == 0)
        return {};
    return QDateTime::fromSecsSinceEpoch(unixSeconds).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString tornSentence(const OpeningReport &report)
{
    const QString waiting =
        report.rowsReplayed > 0 ? QStringLiteral(", %1 more had waited beside it").arg(report.rowsReplayed) : QString();
    return QStringLiteral("The recording was cut off in the middle of a write: %1 readings were saved%2, and "
                          "the old file is kept as \"%3\".")
        .arg(QString::number(report.rowsSalvaged), waiting, QFileInfo(report.tornFile).fileName());
}

} // namespace

/// A torn recording of months takes its time.
bool SorvantoMain::openInsertSerialData()
{
    OpeningProgress progress(this, m_showOnSplash);
    m_insertSerialData->setSalvageProgress([this, &progress](quint32 done, quint32 all) {
        progress.show(done, all);
        return !m_isEndRequested();
    });
    // What they do presumes a recording that is open, or none.
    m_stdTimer->stop();
    m_checkTimer->stop();
    const bool isOpen = m_insertSerialData->createConnection();
    m_insertSerialData->setSalvageProgress({});
    m_stdTimer->start();
    m_checkTimer->start();
    return isOpen;
}

bool SorvantoMain::createInsertSerialData(const QString &path)
{
    m_insertSerialData = std::make_unique<InsertSerialData>(path, m_dbConnectionName, this);
    connect(m_insertSerialData.get(), &InsertSerialData::writingFailed, this, &SorvantoMain::slotWritingFailed);
    connect(m_insertSerialData.get(), &InsertSerialData::writingRestored, this, &SorvantoMain::slotWritingRestored);
    connect(m_insertSerialData.get(), &InsertSerialData::readingsDropped, this, &SorvantoMain::slotReadingsDropped);
    m_journal.watch(*m_insertSerialData);
    if (!openInsertSerialData()) {
        m_insertSerialData.reset();
        m_journal.recordingFailed(QStringLiteral("The recording could not be opened."));
        enter(StationState::Ending);
        if (!m_isEndRequested())
            QMessageBox::critical(nullptr, QStringLiteral("ERROR"),
                                  QStringLiteral("Create database error!\nExit program."), QMessageBox::Ok);
        close();
        QCoreApplication::exit(0);
        return false;
    }
    qCDebug(lcApp).noquote() << "SorvantoMain::createInsertSerialData :" << path;
    m_recordedRange = std::make_unique<RecordedRange>(*m_insertSerialData, path);
    connect(m_recordedRange.get(), &RecordedRange::known, this, &SorvantoMain::slotRangeKnown);
    writeRowsLeftOver();
    reportSavedRows(m_insertSerialData->openingReport());
    if (isRecordingReadOnly()) {
        m_projectCenter->setRecordingRefused(readOnlyReason);
        showTimedMessage(QStringLiteral("WARNING"), readOnlyReason);
    }
    m_projectCenter->setRecordRange(localTimeText(m_recordedRange->start()), localTimeText(m_recordedRange->end()));
    return true;
}

void SorvantoMain::reportSavedRows(const OpeningReport &report)
{
    const bool isTorn = !report.tornFile.isEmpty();
    QStringList sentences;
    if (isTorn)
        sentences += tornSentence(report);
    else if (report.rowsReplayed > 0)
        sentences += QStringLiteral("The program had ended before %1 readings were in the recording. They were saved.")
                         .arg(report.rowsReplayed);
    if (!report.damagedSpool.isEmpty()) {
        sentences += QStringLiteral("The file of readings that waited was damaged and is kept as %1.")
                         .arg(QFileInfo(report.damagedSpool).fileName());
    }
    if (sentences.isEmpty())
        return;
    qCDebug(lcApp).noquote() << "SorvantoMain::reportSavedRows :" << sentences.join(QLatin1Char(' '));
    showTimedMessage(isTorn ? QStringLiteral("WARNING") : QStringLiteral("INFORMATION"),
                     sentences.join(QLatin1Char('\n')));
}

bool SorvantoMain::isRecordingReadOnly() const
{
    return m_insertSerialData && m_insertSerialData->isReadOnly();
}

void SorvantoMain::deleteInsertSerialData()
{
    if (!m_insertSerialData)
        return;
    qCDebug(lcApp) << "SorvantoMain::deleteInsertSerialData()";
    m_recordedRange.reset();
    m_insertSerialData.reset();
}

void SorvantoMain::slotToggleRecord()
{
    if (isRecording())
        slotStopRecord();
    else
        slotStartRecord();
}

void SorvantoMain::toggleRecordState(bool on)
{
    if (on)
        enter(StationState::Recording);
    else if (isRecording())
        enter(StationState::Open);
    qCDebug(lcApp) << "SorvantoMain::toggleRecordState : m_bIsRecordStart :" << on;
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (ConfiguredDevice *device : devices)
        device->setRecording(on);
}

void SorvantoMain::slotStartRecord()
{
    qCDebug(lcApp) << "SorvantoMain::slotStartRecord";
    m_writeDbTimer->stop();
    if (!m_insertSerialData || !m_insertSerialData->isOpen()) {
        showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("Database does not exist."));
        qCDebug(lcApp) << "SorvantoMain::slotStartRecord : [ERROR] Database does not exist";
        return;
    }
    if (isRecordingReadOnly()) {
        showTimedMessage(QStringLiteral("WARNING"), readOnlyReason);
        return;
    }
    toggleRecordState(true);
    m_writeDbTimer->start(writeDbTimerMs);
    m_form->label_record_state->setPixmap(m_recordingPixmap);
    if (m_projectCenter) {
        m_projectCenter->setRecordState(true);
        if (!ProjectFile(m_projectFile).setRecordStartTime(m_projectCenter->startTimeText()))
            reportUnsavedProject();
    }
}

void SorvantoMain::slotStopRecord()
{
    qCDebug(lcApp) << "SorvantoMain::slotStopRecord";
    toggleRecordState(false);
    m_writeDbTimer->stop();

    quint32 start = 0;
    quint32 end = 0;
    if (m_insertSerialData && m_insertSerialData->isOpen()) {
        m_insertSerialData->insertNow();
        const QList<ConfiguredDevice *> devices = m_devices.all();
        for (ConfiguredDevice *device : devices)
            device->insertNoValue();
        m_insertSerialData->insertNow();
        start = m_recordedRange->start();
        end = m_recordedRange->end();
        saveRecordRange(start, end);
    }
    m_form->label_record_state->setPixmap(m_readyPixmap);
    if (m_projectCenter)
        m_projectCenter->setRecordState(false);
    showRecordRange(start, end);
}

void SorvantoMain::saveRecordRange(quint32 start, quint32 end)
{
    ProjectFile file(m_projectFile);
    const bool startSaved = start == 0 || file.setRecordStartTime(localTimeText(start));
    const bool endSaved = end == 0 || file.setRecordStopTime(localTimeText(end));
    if (!startSaved || !endSaved)
        reportUnsavedProject();
}

void SorvantoMain::showRecordRange(quint32 start, quint32 end)
{
    if (!m_projectCenter)
        return;
    if (start != 0)
        m_projectCenter->setStartTimeText(localTimeText(start));
    if (end != 0)
        m_projectCenter->setEndTimeText(localTimeText(end));
}

/// Found out only after the recording was opened, or stopped; while it goes on, its end moves with the clock.
void SorvantoMain::slotRangeKnown()
{
    const quint32 start = m_recordedRange->start();
    const quint32 end = isRecording() ? 0 : m_recordedRange->end();
    if (!isRecordingReadOnly())
        saveRecordRange(start, end);
    showRecordRange(start, end);
}

/// Rows that could not be written when the recording stopped, or when the project was closed the last time. While the
/// station records they go with the next batch.
void SorvantoMain::writeRowsLeftOver()
{
    if (isRecording() || !m_insertSerialData || InsertSerialData::pendingCount() == 0)
        return;
    m_insertSerialData->insertNow();
    if (InsertSerialData::pendingCount() > 0)
        return;
    const quint32 start = m_recordedRange->start();
    const quint32 end = m_recordedRange->end();
    saveRecordRange(start, end);
    showRecordRange(start, end);
}

void SorvantoMain::writeDb()
{
    if (!m_insertSerialData || !m_insertSerialData->isOpen())
        return;
    const int batch = m_devices.size() < 2 ? batchOfOneDevice : batchOfSeveralDevices;
    if (InsertSerialData::pendingCount() >= batch)
        m_insertSerialData->insertNow();
}

void SorvantoMain::updateRecordRange(const QString &now)
{
    if (!m_projectCenter->startTimeText().isEmpty() && !m_projectCenter->endTimeText().isEmpty()) {
        const QFileInfo database(m_databasePath);
        if (database.exists())
            m_projectCenter->setDatabaseSize(database.size());
    }
    if (isRecording())
        m_projectCenter->setEndTimeText(now);
}

void SorvantoMain::slotWritingFailed(const QString &reason)
{
    qCDebug(lcApp).noquote() << "SorvantoMain::slotWritingFailed : [ERROR]" << reason;
    showTimedMessage(QStringLiteral("ERROR"), reason);
    if (m_projectCenter)
        m_projectCenter->setWriteTrouble(reason);
}

void SorvantoMain::slotWritingRestored()
{
    qCDebug(lcApp) << "SorvantoMain::slotWritingRestored";
    if (m_projectCenter)
        m_projectCenter->setWriteTrouble({});
}

void SorvantoMain::slotReadingsDropped(int count)
{
    const QString text = QStringLiteral("%1 readings were lost while they could not be written.").arg(count);
    qCDebug(lcApp).noquote() << "SorvantoMain::slotReadingsDropped : [ERROR]" << text;
    showTimedMessage(QStringLiteral("ERROR"), text);
}
