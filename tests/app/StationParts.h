#pragma once

#include "StationFixture.h"

#include "app/SorvantoMain.h"

#include <QListWidget>
#include <QMenu>
#include <QPushButton>

// What an operator finds in the main window.

inline QAction *action(const SorvantoMain &station, const char *menu, const QString &text)
{
    const QList<QAction *> actions = child<QMenu>(station, menu)->actions();
    for (QAction *candidate : actions) {
        if (candidate->text() == text)
            return candidate;
    }
    qFatal("no action of that text");
}

/// Of all menus, in their order; submenus count as one.
inline QStringList enabledActions(const SorvantoMain &station)
{
    QStringList texts;
    for (const char *menu : {"menu_project", "menu_record", "menu_view"}) {
        const QList<QAction *> actions = child<QMenu>(station, menu)->actions();
        for (const QAction *candidate : actions) {
            if (!candidate->isSeparator() && candidate->isEnabled())
                texts << candidate->text();
        }
    }
    return texts;
}

/// A label of the window itself: screens have labels of the same names.
inline QString labelText(const SorvantoMain &station, const char *name)
{
    const auto *title = child<QWidget>(station, "menuFrame");
    const auto *inTitle = title->findChild<QLabel *>(QLatin1String(name));
    return inTitle ? inTitle->text() : child<QLabel>(*child<QWidget>(station, "statusFrame"), name)->text();
}

/// Null when another screen is in the centre.
template <typename Screen>
Screen *shownScreen(const SorvantoMain &station)
{
    const QList<Screen *> screens = station.findChildren<Screen *>();
    for (Screen *screen : screens) {
        if (!screen->isHidden())
            return screen;
    }
    return nullptr;
}

inline QStringList rowTexts(const QListWidget &list)
{
    QStringList texts;
    for (int i = 0; i < list.count(); ++i)
        texts << list.item(i)->text();
    return texts;
}
