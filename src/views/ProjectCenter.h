#pragma once

#include <QIcon>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <memory>

class ChartView;
class ConfiguredDevice;
class DashboardTab;
class QDialog;
class ProjectList;
class SensingOptionDialog;
class QVBoxLayout;

namespace Ui {
class ProjectCenter;
}

/// The panel of an open project: its devices on the left, the board beside them, the record bar below.
/// The board shows the dashboards or the chart of one device.
class ProjectCenter : public QWidget
{
    Q_OBJECT

public:
    explicit ProjectCenter(const QString &projectFile, QWidget *parent = nullptr);
    ~ProjectCenter() override;

    /// Puts the keyboard into the list of devices.
    void takeFocus();
    void setDashboardNames(const QStringList &names);
    /// To be called once. Devices are not owned; they must be detached from their views before this panel goes away.
    void setDevices(const QList<ConfiguredDevice *> &devices);
    void setDeviceListVisible(bool visible);
    /// Cells of the dashboards that hold no tile.
    void showEmptyCells(bool show);

    /// Recording: keeps the start text, or takes the present time where there is none. Idle: ends the range now.
    void setRecordState(bool recording);
    /// The size of the recording in bytes; from 3 GiB on it is shown as too large.
    void setDatabaseSize(qint64 bytes);
    /// Why nothing can be recorded: the record button is off and says so.
    void setRecordingRefused(const QString &reason);
    /// Why readings are not reaching the recording at present; an empty text when they are.
    void setWriteTrouble(const QString &reason);

    // The record range, as shown: "yyyy-MM-dd hh:mm:ss" or empty.
    QString startTimeText() const;
    QString endTimeText() const;
    void setStartTimeText(const QString &text);
    void setEndTimeText(const QString &text);
    void setRecordRange(const QString &start, const QString &end);

signals:
    void clickRecord();
    /// A device's options were changed: they are to be saved.
    void updateProjectFile();
    /// Reserved: an interval is chosen on the device manager so far.
    void changeInterval(int ms);

private slots:
    void slotRecord();
    void slotDashboardClicked();
    void slotDeviceClicked(ConfiguredDevice *device);
    void slotPopupSensingOption();
    void slotSensingConfirm();
    void slotNetworkSetting();

private:
    void deleteClosedOptionDialogs();
    void showOnBoard(QWidget *shown, QWidget *hidden);

    std::unique_ptr<Ui::ProjectCenter> m_form;
    QIcon m_recordIcon;
    QIcon m_recordStopIcon;
    ProjectList *m_projectList = nullptr;
    DashboardTab *m_dashboards = nullptr;
    ChartView *m_chartView = nullptr;
    QVBoxLayout *m_boardLayout;
    QPointer<ConfiguredDevice> m_currentDevice; ///< whose chart was opened last
    bool m_dashboardsShowing = true;
    QPointer<QDialog> m_networkDialog;
};
