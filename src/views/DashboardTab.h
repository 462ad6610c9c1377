#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>
#include <array>
#include <memory>

class ConfiguredDevice;
class DashBoard;

namespace Ui {
class DashboardTab;
}

/// The four dashboards of a project as named tabs.
class DashboardTab : public QWidget
{
    Q_OBJECT

public:
    explicit DashboardTab(QWidget *parent = nullptr);
    ~DashboardTab() override;

    /// Tabs without a name keep the title they have.
    void setDashboardNames(const QStringList &names);
    /// To be called once. A device whose dashboard does not exist, or is full, is shown on none.
    void setDevices(const QList<ConfiguredDevice *> &devices);
    void showEmptyCells(bool show);
    void refreshTiles();

signals:
    void deviceClicked(ConfiguredDevice *device);

private slots:
    void slotDashboardClicked(ConfiguredDevice *device);

private:
    static constexpr int dashboardCount = 4;

    std::unique_ptr<Ui::DashboardTab> m_form;
    std::array<DashBoard *, dashboardCount> m_dashboards;
};
