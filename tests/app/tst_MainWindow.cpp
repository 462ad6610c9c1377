#include "StationParts.h"

#include "app/AlarmSound.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

/// The main window's own parts: its bands, labels and menus.
class tst_MainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        m_station = std::make_unique<SorvantoMain>();
        m_station->show();
    }

    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
    }

    void isAnOrdinaryWindow()
    {
        QCOMPARE(m_station->windowTitle(), QStringLiteral("Sorvanto Lite"));
        QCOMPARE(m_station->font().family(), QStringLiteral("Segoe UI"));
        QCOMPARE(m_station->styleSheet(),
                 QStringLiteral("QToolTip { color: rgb(230,230,230); background-color: rgb(12, 12, 12); "
                                "border: #996633; }"));
        QVERIFY(!m_station->windowFlags().testFlag(Qt::FramelessWindowHint));
        QVERIFY(
            isPicture(m_station->windowIcon().pixmap(32, 32), QIcon(QStringLiteral(":/img/I_2.png")).pixmap(32, 32)));
    }

    void nobodyWaitsForTheAnswerToABoxAboutTheSound()
    {
        const QString text = QStringLiteral("Could not find file \"critical.wav\"!");
        bool goesOn = false;
        QString seen;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !seen.isNull())
                return;
            seen = (goesOn ? QString() : QStringLiteral("held up: ")) + box->windowTitle() + QLatin1Char('|') +
                   box->text();
            box->button(QMessageBox::Ok)->click();
        });
        watch.start(10);
        emit m_station->findChild<AlarmSound *>()->setUpFailed(QStringLiteral("critical.wav"), text);
        goesOn = true;
        QTRY_COMPARE(seen, QStringLiteral("critical.wav|") + text);
        QTRY_VERIFY(!m_station->findChild<QMessageBox *>());
    }

    void bandsAreAsDesigned()
    {
        const auto *title = child<QWidget>(*m_station, "menuFrame");
        QCOMPARE(title->minimumHeight(), 40);
        QCOMPARE(title->maximumHeight(), 40);
        QCOMPARE(title->styleSheet(), QStringLiteral("background-color: rgb(198, 198, 198);"));
        const auto *centre = child<QWidget>(*m_station, "centralFrame");
        QVERIFY(centre->width() >= 1024);
        QVERIFY(centre->height() >= 464);
        const auto *status = child<QWidget>(*m_station, "statusFrame");
        QCOMPARE(status->minimumHeight(), 20);
        QCOMPARE(status->maximumHeight(), 20);
        QCOMPARE(status->styleSheet(), QStringLiteral("background-color: rgb(220, 220, 220);"));
    }

    void buttonsAreAsDesigned_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("command_project") << "Project";
        QTest::newRow("command_record") << "Record";
        QTest::newRow("command_screen") << "Window";
        QTest::newRow("command_help") << "Help";
    }

    void buttonsAreAsDesigned()
    {
        const auto *button = child<QPushButton>(*m_station, QTest::currentDataTag());
        QTEST(button->text(), "text");
        QCOMPARE(button->styleSheet(), QStringLiteral("color: rgb(80, 80, 80);"));
    }

    void labelsAreAsDesigned()
    {
        const auto minimumWidth = [this](const char *name) {
            return child<QWidget>(*m_station, name)->minimumWidth();
        };
        QCOMPARE(minimumWidth("label_top_logo"), 135);
        QCOMPARE(labelText(*m_station, "label_version"), QStringLiteral("V3.54"));
        QCOMPARE(child<QWidget>(*m_station, "label_bottom_logo")->maximumWidth(), 100);
        QCOMPARE(minimumWidth("label_projectname"), 300);
        QCOMPARE(minimumWidth("label_interval"), 130);
        QCOMPARE(minimumWidth("label_datetime"), 125);
        QVERIFY(shows("label_top_logo", ":/img/SorvantoLogoLite.png"));
        QVERIFY(shows("label_bottom_logo", ":/img/OstrivaneLogo.png"));
        QVERIFY(shows("label_record_state", ":/img/StateReady.png"));
        for (const char *line : {"line_1", "line_2", "line_3", "line_4"})
            QVERIFY(child<QWidget>(*m_station, line)->isVisible());
    }

    void menusAreAsDesigned_data()
    {
        QTest::addColumn<QStringList>("entries"); // "-" is a separator, "+" a checkable entry
        QTest::newRow("menu_project") << QStringList{QStringLiteral("Add/Delete"),
                                                     QStringLiteral("Close"),
                                                     QStringLiteral("-"),
                                                     QStringLiteral("+Auto Load Recent Project"),
                                                     QStringLiteral("+Auto Start Record"),
                                                     QStringLiteral("+Keep Socket Connection"),
                                                     QStringLiteral("-"),
                                                     QStringLiteral("Refresh Devices"),
                                                     QStringLiteral("-"),
                                                     QStringLiteral("Exit")};
        QTest::newRow("menu_record") << QStringList{QStringLiteral("Lookback"), QStringLiteral("-"),
                                                    QStringLiteral("Report")};
        QTest::newRow("menu_report") << QStringList{QStringLiteral("Daily Report"), QStringLiteral("Weekly Report"),
                                                    QStringLiteral("Monthly Report"), QStringLiteral("HACCP Report")};
        QTest::newRow("menu_view") << QStringList{QStringLiteral("+FullScreen"), QStringLiteral("-"),
                                                  QStringLiteral("+Expansion Mode")};
    }

    void menusAreAsDesigned()
    {
        const auto *menu = child<QMenu>(*m_station, QTest::currentDataTag());
        QStringList entries;
        const QList<QAction *> actions = menu->actions();
        for (const QAction *entry : actions) {
            const QString mark = entry->isCheckable() ? QStringLiteral("+") : QString();
            entries << (entry->isSeparator() ? QStringLiteral("-") : mark + entry->text());
        }
        QTEST(entries, "entries");
        QCOMPARE(menu->styleSheet(), QStringLiteral("background-color: rgb(203, 203, 203);"));
        QVERIFY(menu->font().bold());
    }

    void reportsThatAreNotMadeAreNeverOffered()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QStringList offered;
        const QList<QAction *> reports = child<QMenu>(*m_station, "menu_report")->actions();
        for (const QAction *report : reports) {
            if (report->isEnabled())
                offered << report->text();
        }
        QCOMPARE(offered, QStringList{QStringLiteral("Daily Report")});
    }

    void menusDropUnderTheirButtons_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::newRow("command_project") << "menu_project";
        QTest::newRow("command_record") << "menu_record";
        QTest::newRow("command_screen") << "menu_view";
    }

    void menusDropUnderTheirButtons()
    {
        QFETCH(QString, menu);
        auto *button = child<QWidget>(*m_station, QTest::currentDataTag());
        QTest::mouseClick(button, Qt::LeftButton);
        const auto *dropped = child<QMenu>(*m_station, menu.toLatin1().constData());
        QVERIFY(dropped->isVisible());
        QCOMPARE(dropped->pos(),
                 m_station->geometry().topLeft() + QPoint(button->x() + 5, button->geometry().bottom() + 1));
    }

private:
    static bool isPicture(const QPixmap &shown, const QPixmap &expected)
    {
        return !expected.isNull() && shown.toImage() == expected.toImage();
    }

    bool shows(const char *label, const char *picture) const
    {
        return isPicture(child<QLabel>(*child<QWidget>(*m_station, label)->parent(), label)->pixmap(Qt::ReturnByValue),
                         QPixmap(QLatin1String(picture)));
    }

    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
};

STATION_TEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
