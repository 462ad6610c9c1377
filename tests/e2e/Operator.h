#pragma once

#include <QPoint>
#include <QStringList>
#include <functional>

class QColor;
class QImage;
class QRect;
class QWidget;

/// No step of an operator takes anything near this long unless something is broken.
constexpr int patienceMs = 30000;

/// Waits for something to become true that an operator sees or hears.
#define SEES(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, patienceMs)
#define SEES_EQUAL(seen, expected) QTRY_COMPARE_WITH_TIMEOUT(seen, expected, patienceMs)

/// The eyes and hands of an operator in front of the station: finds what is on the screen by its object name, and works
/// it through the window it is in, with mouse and keyboard, at the place where it is shown.
/// A name may be preceded by those of widgets around it: "widget_01/label_number". Of several of a name the one in
/// front is meant: an open menu, then a dialog, then the main window. Hands wait until what they reach for is on the
/// screen, enabled and not covered; they return false if that takes too long.
class Operator
{
public:
    /// Messages are seen that come from now on.
    static void awaitMessages();

    // Eyes
    /// Null when it is not on the screen.
    static QWidget *find(const QString &name);
    static bool sees(const QString &name) { return find(name) != nullptr; }
    static bool isEnabled(const QString &name);
    /// What a label, button, field, list or box shows; null when it is not on the screen.
    static QString text(const QString &name);
    static QStringList rows(const QString &list);
    /// The entries of a menu that is open, as "text", "(text)" for a disabled one, "text*" for a checked one.
    static QStringList entries();
    /// On the screen, near the upper left corner.
    static QColor colour(const QString &name);
    /// As it is on the screen.
    static QImage image(const QString &name);
    /// The oldest message that has come and was not closed by closeMessage(); null when there is none. Messages go by
    /// themselves after a while: an operator who is slower than that has read them all the same.
    static QString message();

    // Hands
    static bool click(const QString &name);
    static bool doubleClick(const QString &name);
    /// Takes the place of what a field holds.
    static bool type(const QString &name, const QString &text);
    static bool typeNumber(const QString &name, double number);
    // Into whatever has the keyboard.
    static bool typeOn(const QString &text);
    static bool press(Qt::Key key);
    static bool clickTab(const QString &tabs, int index);
    /// The first row that begins with @p start.
    static bool clickRow(const QString &list, const QString &start, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static bool doubleClickRow(const QString &list, const QString &start);
    static bool pick(const QString &combo, const QString &text);
    /// Opens the menu of a button and its submenus, and clicks the last entry.
    static bool choose(const QString &button, const QStringList &entries);
    /// Through the window manager, as with the cross in the title bar.
    static bool closeWindow(const QString &name);
    /// With the real pointer, which stays there.
    static bool pointAt(const QString &name, const QPoint &offset);
    static void putPointerAway();
    /// Closes that message by its button, unless it has gone by itself.
    static bool closeMessage();

    /// Keeps a picture of the whole screen.
    static void photograph(const QString &name);
    /// Keeps a picture of a window, without the frame that the window manager draws.
    static void photograph(const QString &name, const QString &window);

private:
    /// False if a click at that place of it would not arrive there.
    static bool tryClick(QWidget *widget, const QPoint &at, bool isDouble = false,
                         Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static bool clickAt(const QString &name, const std::function<QPoint(QWidget *)> &place, bool isDouble = false,
                        Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static bool clickRow(const QString &list, const QString &start, bool isDouble, Qt::KeyboardModifiers modifiers);
    static bool clickEntry(const QString &text);
    static void keep(const QString &name, const QRect &part);
};
