#pragma once

#include <QIcon>
#include <QList>
#include <QWidget>
#include <memory>
#include <vector>

class ConfiguredDevice;
class QListWidgetItem;

namespace Ui {
class ProjectList;
}

/// The list of the project's devices, each with its connection symbol, under a button that leads back to the
/// dashboards. Devices are not owned and may be gone before the list.
class ProjectList : public QWidget
{
    Q_OBJECT

public:
    explicit ProjectList(const QString &projectName, QWidget *parent = nullptr);
    ~ProjectList() override;

    /// Puts the keyboard among the devices.
    void takeFocus();
    /// Lists the devices and gives each its row; the devices must forget their rows before this panel goes away.
    /// A device listed twice keeps its last row only.
    void setDevices(const QList<ConfiguredDevice *> &devices);
    void selectDevice(const ConfiguredDevice *device);
    /// Reads names and addresses again.
    void refresh();

signals:
    void dashboardClicked();
    /// Null when the row belongs to no device.
    void deviceClicked(ConfiguredDevice *device);

private slots:
    void slotPushDashboard();
    void deviceClicked(QListWidgetItem *item);

private:
    class Row;

    Row *rowOf(const ConfiguredDevice *device) const;
    void openCurrent();

    std::unique_ptr<Ui::ProjectList> m_form;
    QIcon m_connectedIcon;
    QIcon m_disconnectedIcon;
    std::vector<std::unique_ptr<Row>> m_rows;
};
