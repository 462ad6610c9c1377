#include "Operator.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QScreen>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QTextEdit>
#include <QWindow>

#include <algorithm>

namespace {

/// Windows on the screen, the one in front first.
QWidgetList shownWindows()
{
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.erase(std::remove_if(windows.begin(), windows.end(), [](const QWidget *w) { return !w->isVisible(); }),
                  windows.end());
    const auto rank = [](QWidget *window) {
        if (window == QApplication::activePopupWidget())
            return 0;
        if (window == QApplication::activeModalWidget())
            return 1;
        return window->windowType() == Qt::Dialog ? 2 : 3;
    };
    std::stable_sort(windows.begin(), windows.end(), [rank](QWidget *a, QWidget *b) { return rank(a) < rank(b); });
    return windows;
}

QWidget *shownChild(const QWidget *parent, const QString &name)
{
    const auto children = parent->findChildren<QWidget *>(name);
    const auto shown =
        std::find_if(children.cbegin(), children.cend(), [](const QWidget *child) { return child->isVisible(); });
    return shown == children.cend() ? nullptr : *shown;
}

template <typename T>
T *findAs(const QString &name)
{
    return qobject_cast<T *>(Operator::find(name));
}

QListWidgetItem *rowOf(const QString &list, const QString &start)
{
    const auto *shown = findAs<QListWidget>(list);
    const auto found = shown ? shown->findItems(start, Qt::MatchStartsWith) : QList<QListWidgetItem *>();
    return found.isEmpty() ? nullptr : found.first();
}

QMenu *openMenu()
{
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

QAction *entryOf(const QMenu &menu, const QString &text)
{
    const auto actions = menu.actions();
    const auto found = std::find_if(actions.cbegin(), actions.cend(),
                                    [&text](const QAction *action) { return action->text() == text; });
    return found == actions.cend() ? nullptr : *found;
}

bool waitFor(const char *what, const QString &name, const std::function<bool()> &condition)
{
    if (QTest::qWaitFor(condition, patienceMs))
        return true;
    qWarning("%s \"%s\": not possible", what, qUtf8Printable(name));
    return false;
}

/// Pressing a key may close its window before it is let go.
void pressKey(const QPointer<QWindow> &window, Qt::Key key, const QString &text,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    for (const auto action : {QTest::Press, QTest::Release}) {
        if (window)
            QTest::sendKeyEvent(action, window, key, text, modifiers);
    }
}

void typeInto(const QPointer<QWindow> &window, const QString &text)
{
    for (const QChar character : text)
        pressKey(window, Qt::Key(character.toUpper().unicode()), QString(character));
}

} // namespace

QWidget *Operator::find(const QString &name)
{
    const QStringList path = name.split(QLatin1Char('/'));
    const QWidgetList windows = shownWindows();
    for (QWidget *window : windows) {
        QWidget *found = window->objectName() == path.first() ? window : shownChild(window, path.first());
        for (int i = 1; found && i < path.size(); ++i)
            found = shownChild(found, path.at(i));
        if (found)
            return found;
    }
    return nullptr;
}

bool Operator::isEnabled(const QString &name)
{
    const QWidget *widget = find(name);
    return widget && widget->isEnabled();
}

QString Operator::text(const QString &name)
{
    QWidget *widget = find(name);
    if (const auto *label = qobject_cast<QLabel *>(widget))
        return label->text();
    if (const auto *button = qobject_cast<QAbstractButton *>(widget))
        return button->text();
    if (const auto *edit = qobject_cast<QLineEdit *>(widget))
        return edit->text();
    if (const auto *spinBox = qobject_cast<QAbstractSpinBox *>(widget))
        return spinBox->text();
    if (const auto *combo = qobject_cast<QComboBox *>(widget))
        return combo->currentText();
    if (const auto *box = qobject_cast<QGroupBox *>(widget))
        return box->title();
    if (const auto *browser = qobject_cast<QTextEdit *>(widget))
        return browser->toPlainText();
    return {};
}

QStringList Operator::rows(const QString &list)
{
    QStringList texts;
    const auto *shown = findAs<QListWidget>(list);
    for (int i = 0; shown && i < shown->count(); ++i)
        texts << shown->item(i)->text();
    return texts;
}

QStringList Operator::entries()
{
    QStringList texts;
    const QMenu *menu = openMenu();
    const auto actions = menu ? menu->actions() : QList<QAction *>();
    for (const QAction *action : actions) {
        if (action->isSeparator())
            continue;
        const QString text = action->text() + (action->isChecked() ? QStringLiteral("*") : QString());
        texts << (action->isEnabled() ? text : QLatin1Char('(') + text + QLatin1Char(')'));
    }
    return texts;
}

QColor Operator::colour(const QString &name)
{
    const QWidget *widget = find(name);
    if (!widget)
        return {};
    constexpr QPoint nearCorner(3, 3);
    const QPoint at = widget->mapToGlobal(nearCorner);
    return QGuiApplication::primaryScreen()->grabWindow(0, at.x(), at.y(), 1, 1).toImage().pixelColor(0, 0);
}

bool Operator::tryClick(QWidget *widget, const QPoint &at, bool isDouble, Qt::KeyboardModifiers modifiers)
{
    QWidget *shown = widget->window();
    QWindow *window = shown->windowHandle();
    if (!widget->isEnabled() || !window || !window->isExposed())
        return false;
    const QWidget *modal = QApplication::activeModalWidget();
    if (modal && !QApplication::activePopupWidget() && modal != shown)
        return false;
    const QPoint inWindow = widget->mapTo(shown, at);
    const QWidget *hit = shown->childAt(inWindow);
    if (hit ? hit != widget && !widget->isAncestorOf(hit) : !widget->isWindow())
        return false;
    QTest::mouseClick(window, Qt::LeftButton, modifiers, inWindow);
    if (isDouble)
        QTest::mouseDClick(window, Qt::LeftButton, modifiers, inWindow);
    return true;
}

bool Operator::clickAt(const QString &name, const std::function<QPoint(QWidget *)> &place, bool isDouble,
                       Qt::KeyboardModifiers modifiers)
{
    return waitFor("click", name, [&] {
        QWidget *widget = find(name);
        const QPoint at = widget ? place(widget) : QPoint();
        return !at.isNull() && tryClick(widget, at, isDouble, modifiers);
    });
}

bool Operator::click(const QString &name)
{
    return clickAt(name, [](QWidget *widget) { return widget->rect().center(); });
}

bool Operator::doubleClick(const QString &name)
{
    return clickAt(
        name, [](QWidget *widget) { return widget->rect().center(); }, true);
}

bool Operator::type(const QString &name, const QString &text)
{
    if (!click(name))
        return false;
    QWindow *window = find(name)->window()->windowHandle();
    pressKey(window, Qt::Key_A, {}, Qt::ControlModifier);
    typeInto(window, text);
    return true;
}

bool Operator::typeNumber(const QString &name, double number)
{
    const QWidget *field = find(name);
    return field && type(name, field->locale().toString(number, 'f', 2)) && press(Qt::Key_Tab);
}

bool Operator::typeOn(const QString &text)
{
    const QWidgetList windows = shownWindows();
    if (windows.isEmpty())
        return false;
    typeInto(windows.first()->windowHandle(), text);
    return true;
}

bool Operator::press(Qt::Key key)
{
    const QWidgetList windows = shownWindows();
    if (windows.isEmpty())
        return false;
    pressKey(windows.first()->windowHandle(), key, QString(QChar(QTest::keyToAscii(key))));
    return true;
}

bool Operator::clickTab(const QString &tabs, int index)
{
    const QString bar = tabs + QStringLiteral("/qt_tabwidget_tabbar");
    return clickAt(bar,
                   [index](QWidget *widget) { return qobject_cast<QTabBar *>(widget)->tabRect(index).center(); }) &&
           waitFor("tab", tabs, [&] {
               const auto *shown = findAs<QTabWidget>(tabs);
               return shown && shown->currentIndex() == index;
           });
}

bool Operator::clickRow(const QString &list, const QString &start, bool isDouble, Qt::KeyboardModifiers modifiers)
{
    return clickAt(
        list,
        [&](QWidget *widget) {
            const QListWidgetItem *row = rowOf(list, start);
            return row ? qobject_cast<QListWidget *>(widget)->visualItemRect(row).center() : QPoint();
        },
        isDouble, modifiers);
}

bool Operator::clickRow(const QString &list, const QString &start, Qt::KeyboardModifiers modifiers)
{
    return clickRow(list, start, false, modifiers);
}

bool Operator::doubleClickRow(const QString &list, const QString &start)
{
    return clickRow(list, start, true, Qt::NoModifier);
}

bool Operator::pick(const QString &combo, const QString &text)
{
    if (!click(combo))
        return false;
    return waitFor("pick", text,
                   [&] {
                       const auto *box = findAs<QComboBox>(combo);
                       const int index = box ? box->findText(text) : -1;
                       QAbstractItemView *view = box ? box->view() : nullptr;
                       if (index < 0 || !view->isVisible() || !view->window()->windowHandle()->isExposed())
                           return false;
                       const QPoint at = view->visualRect(view->model()->index(index, 0)).center();
                       QTest::mouseMove(view->window()->windowHandle(), view->viewport()->mapTo(view->window(), at));
                       QTest::mouseClick(view->window()->windowHandle(), Qt::LeftButton, {},
                                         view->viewport()->mapTo(view->window(), at));
                       return true;
                   }) &&
           waitFor("picked", text, [&] { return Operator::text(combo) == text; });
}

bool Operator::clickEntry(const QString &text)
{
    return waitFor("entry", text, [&] {
        const QMenu *menu = openMenu();
        const QAction *entry = menu ? entryOf(*menu, text) : nullptr;
        if (!entry || !entry->isEnabled() || !menu->windowHandle()->isExposed())
            return false;
        QTest::mouseMove(menu->windowHandle(), menu->actionGeometry(const_cast<QAction *>(entry)).center());
        QTest::mouseClick(menu->windowHandle(), Qt::LeftButton, {},
                          menu->actionGeometry(const_cast<QAction *>(entry)).center());
        return true;
    });
}

bool Operator::choose(const QString &button, const QStringList &entries)
{
    return click(button) && std::all_of(entries.cbegin(), entries.cend(), clickEntry);
}

bool Operator::closeWindow(const QString &name)
{
    return waitFor("close", name, [&] {
        QWidget *widget = find(name);
        if (!widget || !widget->window()->windowHandle()->isExposed())
            return false;
        widget->window()->windowHandle()->close();
        return true;
    });
}
