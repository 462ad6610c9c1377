#include "app/SorvantoMain.h"

#include "app/AboutText.h"
#include "app/AlarmSound.h"
#include "app/Logging.h"
#include "app/MainMenus.h"
#include "app/SiblingProgram.h"
#include "dialogs/TransientMessage.h"
#include "project/ProjectFile.h"
#include "ui_SorvantoMain.h"
#include "views/ProjectCenter.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QMessageBox>
#include <utility>

void SorvantoMain::dropDown(QMenu *menu, const QWidget *button)
{
    menu->popup(geometry().topLeft() + QPoint(button->x() + 5, button->geometry().bottom() + 1));
}

void SorvantoMain::slotCommandProject()
{
    dropDown(m_menus->project, m_form->command_project);
}

void SorvantoMain::slotCommandRecord()
{
    dropDown(m_menus->record, m_form->command_record);
}

void SorvantoMain::slotCommandScreen()
{
    dropDown(m_menus->view, m_form->command_screen);
}

void SorvantoMain::slotCommandHelp()
{
    QMessageBox::about(this, QStringLiteral("About ") + windowTitle().remove(QLatin1Char(' ')), aboutText());
}

void SorvantoMain::slotLookbackRecord()
{
    openSibling(QStringLiteral("Lookback"));
}

void SorvantoMain::slotReportDaily()
{
    openSibling(QStringLiteral("Sheetsmith"));
}

void SorvantoMain::openSibling(const QString &program)
{
    if (!QFile::exists(m_databasePath)) {
        showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("Database does not exist."));
        return;
    }
    // The sibling shall see the range as far as it goes now.
    if (m_projectCenter && !isRecordingReadOnly() &&
        !ProjectFile(m_projectFile).setRecordStopTime(m_projectCenter->endTimeText()))
        reportUnsavedProject();
    const QString line = siblingCommandLine(program, m_projectFile);
    qCDebug(lcApp).noquote() << "cmd :" << line;
    if (startSibling(program, m_projectFile))
        return;
    qCDebug(lcApp).noquote() << "startDetached :" << line << "failed!";
    showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("Please check the %1 execution file.").arg(program));
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
    reportUnsavedSettings(m_settings.saveAutoFlags());
}

void SorvantoMain::slotAutoRecord(bool on)
{
    m_settings.autoRecord = on;
    reportUnsavedSettings(m_settings.saveAutoFlags());
}

/// Told once, until they can be saved again: they are written at every opening of a project.
void SorvantoMain::reportUnsavedSettings(bool saved)
{
    if (!saved && m_bSettingsSaved)
        showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("Unable to save the settings."));
    m_bSettingsSaved = saved;
}

void SorvantoMain::checkAlarmSound()
{
    m_alarmSound->setAlarm(isProjectOpen() && m_devices.anyAlarm());
}

void SorvantoMain::handleStateChanged(QAudio::State state)
{
    qCDebug(lcApp) << "SorvantoMain::handleStateChanged : QAudio new State :" << state;
}

void SorvantoMain::showTimedMessage(const QString &title, const QString &text)
{
    tell([this, title, text] { showTransientMessage(title, text, this); });
}

/// Whoever has to answer may not be there for days: nothing but the window waits for the answer.
void SorvantoMain::showCriticalBox(const QString &title, const QString &text)
{
    tell([this, title, text] {
        auto *box = new QMessageBox(QMessageBox::Critical, title, text, QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setWindowModality(Qt::ApplicationModal);
        box->show();
    });
}

void SorvantoMain::tell(const std::function<void()> &show)
{
    if (m_bIsBuilt)
        show();
    else
        m_toldWithTheWindow.append(show);
}

void SorvantoMain::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    for (const auto &show : std::exchange(m_toldWithTheWindow, {}))
        show();
}
