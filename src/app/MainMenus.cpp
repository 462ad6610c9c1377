#include "app/MainMenus.h"

#include <QMenu>

namespace {

/// The style's own grey of a disabled entry is that of the menus' background, and so is what it puts under the white
/// text of the entry under the pointer.
QPalette readable(QPalette palette)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(125, 125, 125));
    palette.setColor(QPalette::HighlightedText, QColor(14, 92, 94));
    return palette;
}

QMenu *makeMenu(const QString &objectName, QWidget *window)
{
    auto *menu = new QMenu(window);
    menu->setObjectName(objectName);
    menu->setStyleSheet(QStringLiteral("background-color: rgb(203, 203, 203);"));
    QFont font = menu->font();
    font.setBold(true);
    menu->setFont(font);
    menu->setPalette(readable(menu->palette()));
    return menu;
}

QAction *addCheckable(QMenu *menu, const QString &text)
{
    QAction *action = menu->addAction(text);
    action->setCheckable(true);
    return action;
}

} // namespace

MainMenus::MainMenus(QWidget *window) : QObject(window)
{
    project = makeMenu(QStringLiteral("menu_project"), window);
    addDelete = project->addAction(tr("Add/Delete"));
    close = project->addAction(tr("Close"));
    project->addSeparator();
    autoProject = addCheckable(project, tr("Auto Load Recent Project"));
    autoRecord = addCheckable(project, tr("Auto Start Record"));
    keepAlive = addCheckable(project, tr("Keep Socket Connection"));
    project->addSeparator();
    refreshDevices = project->addAction(tr("Refresh Devices"));
    project->addSeparator();
    exit = project->addAction(tr("Exit"));

    record = makeMenu(QStringLiteral("menu_record"), window);
    lookback = record->addAction(tr("Lookback"));
    record->addSeparator();
    report = makeMenu(QStringLiteral("menu_report"), window);
    report->setTitle(tr("Report"));
    record->addMenu(report);
    dailyReport = report->addAction(tr("Daily Report"));
    for (const QString &text : {tr("Weekly Report"), tr("Monthly Report"), tr("HACCP Report")})
        report->addAction(text)->setEnabled(false);

    view = makeMenu(QStringLiteral("menu_view"), window);
    fullScreen = addCheckable(view, tr("FullScreen"));
    view->addSeparator();
    expansionMode = addCheckable(view, tr("Expansion Mode"));
}

void MainMenus::setEnabledStates(const ActionStates &states)
{
    addDelete->setEnabled(states.addDelete);
    close->setEnabled(states.close);
    keepAlive->setEnabled(states.keepAlive);
    refreshDevices->setEnabled(states.refreshDevices);
    exit->setEnabled(states.exit);
    lookback->setEnabled(states.siblings);
    report->setEnabled(states.siblings);
    dailyReport->setEnabled(states.siblings);
    expansionMode->setEnabled(states.expansionMode);
}
