#include "app/MainMenus.h"

#include <QMenu>
#include <QTest>

namespace {

/// How much darker or brighter than the menus' background, of 255, an entry's text is at least.
constexpr int readableContrast = 70;
constexpr int background = 203;

int contrastIn(const QImage &entry)
{
    int contrast = 0;
    for (int y = 0; y < entry.height(); ++y) {
        for (int x = 0; x < entry.width(); ++x)
            contrast = qMax(contrast, qAbs(qGray(entry.pixel(x, y)) - background));
    }
    return contrast;
}

/// The part of an entry that holds its text, without the arrow of a submenu.
QRect textPart(const QRect &entry)
{
    return entry.adjusted(8, 2, -entry.width() / 3, -2);
}

} // namespace

/// What an operator can read in the menus.
class tst_MainMenus : public QObject
{
    Q_OBJECT

private slots:
    void entriesAreReadable_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("hovered");
        QTest::newRow("enabled") << true << false;
        QTest::newRow("under the pointer") << true << true;
        QTest::newRow("disabled") << false << false;
    }

    void entriesAreReadable()
    {
        QFETCH(bool, enabled);
        QFETCH(bool, hovered);
        QWidget window;
        const MainMenus menus(&window);
        for (QMenu *menu : {menus.project, menus.record, menus.report, menus.view}) {
            menu->popup({});
            const QList<QAction *> actions = menu->actions();
            for (QAction *action : actions) {
                if (action->isSeparator())
                    continue;
                action->setEnabled(enabled);
                menu->setActiveAction(hovered ? action : nullptr);
                const QImage entry = menu->grab(textPart(menu->actionGeometry(action))).toImage();
                QVERIFY2(contrastIn(entry) >= readableContrast, qPrintable(action->text()));
            }
            menu->hide();
        }
    }
};

QTEST_MAIN(tst_MainMenus)
#include "tst_MainMenus.moc"
