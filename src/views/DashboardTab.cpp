#include "views/DashboardTab.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/SharpPixmap.h"
#include "ui_DashboardTab.h"
#include "views/DashBoard.h"

#include <QStackedWidget>
#include <QTabBar>

namespace {

constexpr int devicesPerDashboard = 16;

/// An ampersand in a tab's title would underline the letter after it.
QString plainTitle(QString name)
{
    return name.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace

DashboardTab::DashboardTab(QWidget *parent) : QWidget(parent), m_form(std::make_unique<Ui::DashboardTab>())
{
    m_form->setupUi(this);
    m_form->label_title->setPixmap(sharpPixmap(QStringLiteral(":/img/DashboardText.png")));
    // Under a style sheet fonts are not inherited.
    m_form->tabWidget->tabBar()->setFont(font());
    // Where the tabs keep their pages: a page that is put there later looks up all its styles again.
    auto *pages = m_form->tabWidget->findChild<QStackedWidget *>();
    for (int i = 0; i < dashboardCount; ++i) {
        m_dashboards[size_t(i)] = new DashBoard(pages);
        connect(m_dashboards[size_t(i)], &DashBoard::dashboardClicked, this, &DashboardTab::slotDashboardClicked);
        m_form->tabWidget->addTab(m_dashboards[size_t(i)], QStringLiteral("Dashboard %1").arg(i + 1));
    }
}

DashboardTab::~DashboardTab() = default;

void DashboardTab::setDashboardNames(const QStringList &names)
{
    for (int i = 0; i < names.size(); ++i) {
        m_form->tabWidget->setTabText(i, plainTitle(names.at(i)));
        m_form->tabWidget->setTabToolTip(i, plainToolTip(names.at(i)));
    }
}

void DashboardTab::setDevices(const QList<ConfiguredDevice *> &devices)
{
    std::array<QList<ConfiguredDevice *>, dashboardCount> pages;
    for (ConfiguredDevice *device : devices) {
        if (!device)
            continue;
        const int number = device->dashboardNumber();
        if (number >= 0 && number < dashboardCount && pages[size_t(number)].size() < devicesPerDashboard)
            pages[size_t(number)].append(device);
    }
    for (size_t i = 0; i < pages.size(); ++i)
        m_dashboards[i]->setDevices(pages[i]);
}

void DashboardTab::showEmptyCells(bool show)
{
    for (DashBoard *dashboard : m_dashboards)
        dashboard->showEmptyCells(show);
}

void DashboardTab::refreshTiles()
{
    for (DashBoard *dashboard : m_dashboards)
        dashboard->refreshTiles();
}

void DashboardTab::slotDashboardClicked(ConfiguredDevice *device)
{
    emit deviceClicked(device);
}
