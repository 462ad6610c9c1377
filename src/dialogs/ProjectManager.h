#pragma once

#include "device/AvailDevice.h"
#include "device/ConfiguredDevice.h"

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <array>
#include <memory>

class ManualConfigDeviceDialog;
class QAction;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QMenu;

namespace Ui {
class ProjectManager;
}

/// The screen on which the operator chooses a project's devices and the dashboard of each. It never deletes a device:
/// the project's own belong to the controller all along, those of projectListConfirm() from then on, and what else was
/// added by hand is to be fetched with takeUnconfirmedDevices().
class ProjectManager : public QWidget
{
    Q_OBJECT

public:
    static constexpr int maxDevices = 64;

    explicit ProjectManager(QWidget *parent = nullptr);
    ~ProjectManager() override;

    /// Puts the keyboard into the list of found loggers.
    void takeFocus();
    /// The interval can only be chosen when a project is created.
    void setIntervalDisabled(bool disabled);
    /// The devices of the project that is edited; to be called before setAvailDeviceList().
    void setConfiguredDeviceList(const QList<ConfiguredDevice *> &devices);
    /// Lists the loggers in reach that are on no dashboard; the records are copied.
    void setAvailDeviceList(const QList<AvailDevice *> &devices);
    void setDashboardNames(const QStringList &names);
    /// Devices of the project that is edited which found no place on their dashboard and are none of @p confirmed: they
    /// cannot be seen here, so nobody has removed them.
    QList<ConfiguredDevice *> unseenDevices(const QList<ConfiguredDevice *> &confirmed) const;

    /// Devices added by hand that are in no confirmed list: refused, removed or still waiting. The caller closes and
    /// frees them. To be called once this screen is done with, confirmed or not; a dialog that is still testing a
    /// device is closed.
    QList<ConfiguredDevice *> takeUnconfirmedDevices();

signals:
    /// The devices in the order of dashboards and rows, all now owned by the receiver, and the four dashboard names.
    void projectListConfirm(const QList<ConfiguredDevice *> &devices, const QStringList &dashboardNames);
    /// Asks for a new search; the answer is setAvailDeviceList().
    void refreshAvailDeviceList();

public slots:
    void slotProjectAddDevice();
    void slotDblProjectAddDevice(QListWidgetItem *item);
    void slotProjectRemoveDevice();
    void slotManualConfigDeviceDlg();
    /// Takes over a device added by hand; a refused or removed one is closed and kept for takeUnconfirmedDevices().
    void slotManualConfigDevice(ConfiguredDevice *device);
    void slotProjectListConfirm();
    void slotCommandInterval();
    void slotIntervalChange();
    void slotRefresh();

private:
    static constexpr int dashboardCount = 4;
    static constexpr int maxRowsOnBoard = 16;

    void connectForm();
    void buildIntervalMenu();
    QListWidget *currentBoard() const;
    int placedRows() const;
    bool isPlaced(const QString &key) const;
    ConfiguredDevice *configuredDevice(const QString &key) const;
    const AvailDevice *availDevice(const QString &key) const;
    /// The device a row stands for, made anew for a found logger that is not configured; null when there is none.
    ConfiguredDevice *deviceOfRow(const QListWidgetItem &row) const;
    bool place(const ConfiguredDevice &device);
    void removeRow(QListWidgetItem *row);
    void setAddingEnabled(bool enabled);
    void showBoardFull();
    void showError(const QString &text);

    std::unique_ptr<Ui::ProjectManager> m_form;
    std::array<QListWidget *, dashboardCount> m_boards;
    std::array<QLineEdit *, dashboardCount> m_names;
    QMenu *m_intervalMenu = nullptr;
    QPointer<ManualConfigDeviceDialog> m_manualDialog;
    QList<QAction *> m_intervals;
    QList<AvailDevice> m_availList;
    QList<ConfiguredDevice *> m_configuredList;
    QList<ConfiguredDevice *> m_unseen;    ///< of these
    QList<ConfiguredDevice *> m_handAdded; ///< not confirmed
};
