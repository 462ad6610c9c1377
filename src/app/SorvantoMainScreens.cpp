#include "app/SorvantoMain.h"

#include "app/MainMenus.h"
#include "device/ConfiguredDevice.h"
#include "dialogs/ProjectMain.h"
#include "dialogs/ProjectManager.h"
#include "ui_SorvantoMain.h"
#include "views/ProjectCenter.h"

#include <QAction>

void SorvantoMain::showStartScreen()
{
    QHash<QString, QVariant> paths;
    for (auto it = m_settings.recentProjects.cbegin(); it != m_settings.recentProjects.cend(); ++it)
        paths.insert(it.key(), it.value());
    m_projectMain = new ProjectMain(m_settings.recentProjectList, paths, this);
    connect(m_projectMain, &ProjectMain::projectCreated, this, &SorvantoMain::projectCreated);
    connect(m_projectMain, &ProjectMain::projectLoaded, this, &SorvantoMain::projectLoaded);
    showScreen(m_projectMain);
    m_projectMain->takeFocus();
}

ProjectManager *SorvantoMain::showProjectManager()
{
    m_projectManager = new ProjectManager(this);
    connect(m_projectManager, &ProjectManager::refreshAvailDeviceList, this, &SorvantoMain::slotRefreshAvailDeviceList);
    connect(m_projectManager, &ProjectManager::projectListConfirm, this, &SorvantoMain::projectListConfirm);
    showScreen(m_projectManager);
    m_projectManager->takeFocus();
    return m_projectManager;
}

void SorvantoMain::refreshFoundDevices()
{
    if (m_projectManager)
        m_projectManager->setAvailDeviceList(m_availDevices.all());
}

void SorvantoMain::showScreen(QWidget *screen)
{
    m_form->centralFrame->layout()->addWidget(screen);
    screen->show();
}

/// Deleted later, because this may run inside one of the screen's signals; until then nothing of it is heard any more.
template <typename Screen>
void SorvantoMain::discard(Screen *&screen)
{
    Screen *discarded = std::exchange(screen, nullptr);
    if (!discarded)
        return;
    discarded->disconnect(this);
    discarded->hide();
    m_form->centralFrame->layout()->removeWidget(discarded);
    discarded->deleteLater();
}

void SorvantoMain::discardScreens()
{
    discard(m_projectMain);
    discard(m_projectManager);
    discard(m_projectCenter);
    m_menus->expansionMode->setChecked(false);
}
