#pragma once

#include "app/ActionStates.h"

#include <QObject>

class QAction;
class QMenu;
class QWidget;

/// The main window's pop-up menus and their actions. Actions report through their own signals.
class MainMenus : public QObject
{
    Q_OBJECT

public:
    /// The menus belong to @p window.
    explicit MainMenus(QWidget *window);

    void setEnabledStates(const ActionStates &states);

    QMenu *project;
    QAction *addDelete;
    QAction *close;
    QAction *autoProject;
    QAction *autoRecord;
    QAction *keepAlive;
    QAction *refreshDevices;
    QAction *exit;

    QMenu *record;
    QAction *lookback;
    QMenu *report;
    QAction *dailyReport;

    QMenu *view;
    QAction *fullScreen;
    QAction *expansionMode;
};
