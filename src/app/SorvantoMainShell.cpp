#include "app/SorvantoMain.h"

#include "app/AlarmSound.h"
#include "app/Logging.h"
#include "app/MainMenus.h"
#include "device/ConfiguredDevice.h"
#include "dialogs/TransientMessage.h"
#include "ui_SorvantoMain.h"
#include "views/ProjectCenter.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <algorithm>

void SorvantoMain::dropDown(QMenu *menu, const QWidget *button)
{
    menu->popup(geometry().topLeft() + QPoint(button->x() + 5, button->geometry().bottom() + 1));
}

void SorvantoMain::slotCommandProject()
{
    dropDown(m_menus->project, m_form->command_project);
}

void SorvantoMain::slotCommandScreen()
{
    dropDown(m_menus->view, m_form->command_screen);
}

void SorvantoMain::topDblClick()
{
    slotViewFull(!isFullScreen());
    m_menus->fullScreen->setChecked(isFullScreen());
}

void SorvantoMain::slotViewFull(bool on)
{
    if (on)
        showFullScreen();
    else
        showNormal();
}

void SorvantoMain::slotShowHideItem(bool on)
{
    if (m_projectCenter)
        m_projectCenter->setDeviceListVisible(!on);
}

void SorvantoMain::slotAutoProject(bool on)
{
    m_settings.autoLoad = on;
    m_settings.saveAutoFlags();
}

void SorvantoMain::slotAutoRecord(bool on)
{
    m_settings.autoRecord = on;
    m_settings.saveAutoFlags();
}

void SorvantoMain::checkAlarmSound()
{
    const bool alarm =
        m_bIsProjectOpen &&
        std::any_of(m_configuredDevices.cbegin(), m_configuredDevices.cend(), [](const ConfiguredDevice *device) {
            return device->alarmOnChannel1() || device->alarmOnChannel2();
        });
    m_alarmSound->setAlarm(alarm);
}

void SorvantoMain::handleStateChanged(QAudio::State state)
{
    qCDebug(lcApp) << "SorvantoMain::handleStateChanged : QAudio new State :" << state;
}

void SorvantoMain::showTimedMessage(const QString &title, const QString &text)
{
    showTransientMessage(title, text, this);
}
