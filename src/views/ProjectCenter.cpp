#include "views/ProjectCenter.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/LinkKindView.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/SensingOptionDialog.h"
#include "ui_ProjectCenter.h"
#include "views/ChartView.h"
#include "views/ContentMinimum.h"
#include "views/DashboardTab.h"
#include "views/ProjectList.h"
#include "views/WindowIcon.h"

#include <QDateTime>
#include <QFileInfo>

namespace {

const QString recordingColour = QStringLiteral("color:rgb(255,255,147);background-color:transparent;");
const QString idleColour = QStringLiteral("color:rgb(192,192,192);background-color:transparent;");
const QString overLimitColour = QStringLiteral("color:rgb(230,80,80);background-color:transparent;");

constexpr qint64 databaseSizeLimit = 3LL * 1024 * 1024 * 1024;
constexpr double bytesPerMegabyte = 1048576.0;

/// So that nothing beside it moves when it appears.
void keepPlace(QWidget *widget)
{
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

QString now()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

} // namespace

ProjectCenter::ProjectCenter(const QString &projectFile, QWidget *parent)
    : QWidget(parent),
      m_form(std::make_unique<Ui::ProjectCenter>()),
      m_recordIcon(QStringLiteral(":/img/RecordButton.png")),
      m_recordStopIcon(QStringLiteral(":/img/RecordStopButton.png"))
{
    m_form->setupUi(this);
    ensureWindowIcon(this);
    // Each in its place from the start: moved there later, all their parts would look up their styles again.
    m_projectList = new ProjectList(QFileInfo(projectFile).baseName(), m_form->widget_list);
    m_dashboards = new DashboardTab(m_form->widget_board);
    m_chartView = new ChartView(m_form->widget_board);
    m_chartView->hide();
    auto *listLayout = new QVBoxLayout(m_form->widget_list);
    listLayout->addWidget(m_projectList);
    m_boardLayout = new QVBoxLayout(m_form->widget_board);
    m_boardLayout->setContentsMargins(0, 0, 0, 0);
    m_boardLayout->setSpacing(0);
    m_boardLayout->addWidget(m_dashboards);
    new ContentMinimum(m_form->widget_board);
    keepPlace(m_form->label_record_error);
    m_form->label_record_error->hide();

    connect(m_form->btn_record, &QAbstractButton::clicked, this, &ProjectCenter::slotRecord);
    connect(m_projectList, &ProjectList::dashboardClicked, this, &ProjectCenter::slotDashboardClicked);
    connect(m_projectList, QOverload<ConfiguredDevice *>::of(&ProjectList::deviceClicked), this,
            &ProjectCenter::slotDeviceClicked);
    connect(m_dashboards, &DashboardTab::deviceClicked, this, &ProjectCenter::slotDeviceClicked);
    connect(m_chartView, &ChartView::popupSensingOption, this, &ProjectCenter::slotPopupSensingOption);
    connect(m_chartView, &ChartView::popupNetworkSetting, this, &ProjectCenter::slotNetworkSetting);
}

ProjectCenter::~ProjectCenter() = default;

void ProjectCenter::takeFocus()
{
    m_projectList->takeFocus();
}

void ProjectCenter::setDashboardNames(const QStringList &names)
{
    m_dashboards->setDashboardNames(names);
}

void ProjectCenter::setDevices(const QList<ConfiguredDevice *> &devices)
{
    m_projectList->setDevices(devices);
    m_dashboards->setDevices(devices);
}

void ProjectCenter::showEmptyCells(bool show)
{
    m_dashboards->showEmptyCells(show);
}

void ProjectCenter::setDeviceListVisible(bool visible)
{
    m_form->widget_list->setVisible(visible);
}

void ProjectCenter::setRecordState(bool recording)
{
    const QString colour = recording ? recordingColour : idleColour;
    for (QLabel *label : {m_form->label_record_starttime, m_form->label_record_endtime, m_form->label_to})
        label->setStyleSheet(colour);
    m_form->btn_record->setIcon(recording ? m_recordStopIcon : m_recordIcon);
    if (recording) {
        if (startTimeText().isEmpty())
            setStartTimeText(now());
        m_form->label_to->setText(QStringLiteral("~"));
    } else {
        setEndTimeText(now());
        m_form->label_to->clear();
    }
}

void ProjectCenter::setDatabaseSize(qint64 bytes)
{
    m_form->label_record_bytes->setStyleSheet(bytes < databaseSizeLimit ? idleColour : overLimitColour);
    m_form->label_record_bytes->setText(
        QStringLiteral("Database ") + QString::number(double(bytes) / bytesPerMegabyte, 'f', 2) + QStringLiteral("MB"));
}

void ProjectCenter::setRecordingRefused(const QString &reason)
{
    m_form->btn_record->setEnabled(false);
    m_form->btn_record->setToolTip(plainToolTip(reason));
}

void ProjectCenter::setWriteTrouble(const QString &reason)
{
    m_form->label_record_error->setText(reason);
    m_form->label_record_error->setToolTip(plainToolTip(reason)); // a long one is cut at the bar's edge
    m_form->label_record_error->setVisible(!reason.isEmpty());
}

QString ProjectCenter::startTimeText() const
{
    return m_form->label_record_starttime->text();
}

QString ProjectCenter::endTimeText() const
{
    return m_form->label_record_endtime->text();
}

void ProjectCenter::setStartTimeText(const QString &text)
{
    m_form->label_record_starttime->setText(text);
}

void ProjectCenter::setEndTimeText(const QString &text)
{
    m_form->label_record_endtime->setText(text);
}

void ProjectCenter::setRecordRange(const QString &start, const QString &end)
{
    setStartTimeText(start);
    setEndTimeText(end);
}

void ProjectCenter::slotRecord()
{
    emit clickRecord();
}

void ProjectCenter::slotDashboardClicked()
{
    m_dashboardsShowing = true;
    m_chartView->clear();
    if (m_currentDevice)
        m_currentDevice->setChartView(nullptr);
    showOnBoard(m_dashboards, m_chartView);
    m_dashboards->refreshTiles();
}

void ProjectCenter::slotDeviceClicked(ConfiguredDevice *device)
{
    if (!device || (!m_dashboardsShowing && device == m_currentDevice))
        return;
    if (m_currentDevice)
        m_currentDevice->setChartView(nullptr);
    m_currentDevice = device;
    m_projectList->selectDevice(device);
    m_dashboardsShowing = false;
    showOnBoard(m_chartView, m_dashboards);
    m_chartView->clear();
    m_chartView->setDevice(device);
    device->setChartView(m_chartView);
}

void ProjectCenter::slotPopupSensingOption()
{
    if (!m_currentDevice)
        return;
    deleteClosedOptionDialogs();
    const auto makeDialog = linkKindView(m_currentDevice->interfaceKind()).makeOptionDialog;
    if (!makeDialog)
        return;
    SensingOptionDialog *dialog = makeDialog(m_currentDevice, this);
    // A dialog that was closed during an exchange may report when another device is the current one.
    connect(dialog, &SensingOptionDialog::sensingConfirm, m_currentDevice, &ConfiguredDevice::checkAlarmAll);
    connect(dialog, &SensingOptionDialog::sensingConfirm, this, &ProjectCenter::slotSensingConfirm);
    dialog->show();
}

/// One that was closed by its window is hidden only, and may still await its logger's answer.
void ProjectCenter::deleteClosedOptionDialogs()
{
    const auto dialogs = findChildren<SensingOptionDialog *>(QString(), Qt::FindDirectChildrenOnly);
    for (SensingOptionDialog *dialog : dialogs) {
        if (!dialog->isVisible() && !dialog->isExchanging())
            delete dialog;
    }
}

void ProjectCenter::slotSensingConfirm()
{
    if (m_currentDevice)
        m_currentDevice->checkAlarmAll();
    m_projectList->refresh();
    m_chartView->refreshHeader();
    // An exchange may end when its dialog was closed long ago.
    if (m_dashboardsShowing)
        m_dashboards->refreshTiles();
    emit updateProjectFile();
}

void ProjectCenter::slotNetworkSetting()
{
    if (!m_currentDevice)
        return;
    const auto makeDialog = linkKindView(m_currentDevice->interfaceKind()).makeAddressDialog;
    if (!makeDialog)
        return;
    // One that was closed by its window is hidden only.
    delete m_networkDialog;
    m_networkDialog = makeDialog(m_currentDevice, this);
    m_networkDialog->show();
}

void ProjectCenter::showOnBoard(QWidget *shown, QWidget *hidden)
{
    m_boardLayout->removeWidget(hidden);
    m_boardLayout->addWidget(shown);
    hidden->hide();
    shown->show();
}
