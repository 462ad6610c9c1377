#include "dialogs/MessageDialog.h"
#include "dialogs/ProjectMain.h"
#include "project/StationLock.h"

#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>

class tst_ProjectMain : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void formIsAsDesigned();
    void dialogsStartInTheDocuments();
    void recentProjectsAreListed_data();
    void recentProjectsAreListed();
    void recentProjectIsHandedOnByItsPath();
    void recentProjectOpensWithEnter();
    void keyboardStartsAtTheWayInThatIsThere();

    void newFileName_data();
    void newFileName();
    void tooLongNewNameCreatesNothing_data();
    void tooLongNewNameCreatesNothing();
    void namesThatLookLikeMarkupAreShownAsTheyAre();
    void uncreatableFileIsReported();
    void chosenExistingFileIsEmptiedFirst();
    void questionIsAboutTheFileThatIsWritten_data();
    void questionIsAboutTheFileThatIsWritten();
    void refusedReplacementAsksForAnotherName();

    void anotherProjectsRecordingIsLeftToIt_data();
    void anotherProjectsRecordingIsLeftToIt();
    void proposedNamesWork();
    void openProjectIsNotEmptied_data();
    void openProjectIsNotEmptied();
    void fileMadeMeanwhileIsNotEmptied();

    void existingFileIsHandedOn();
    void tooLongExistingNameIsRefused();
    void unreadableFileIsReported();
    void cancelDoesNothing_data();
    void cancelDoesNothing();
    void panelMayGoWhileItsDialogIsOpen();

private:
    QPushButton *button(const char *name) const { return m_panel->findChild<QPushButton *>(QLatin1String(name)); }
    QListWidget *list() const { return m_panel->findChild<QListWidget *>(QStringLiteral("listWidget")); }
    QFileDialog *fileDialog() const;
    QMessageBox *question() const;
    MessageDialog *message() const { return m_panel->findChild<MessageDialog *>(); }
    /// Types @p name into the file dialog and accepts.
    void choose(const QString &name);
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void write(const QString &name, const QByteArray &content) const;
    QByteArray content(const QString &name) const;
    QString shownText() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ProjectMain> m_panel;
    std::unique_ptr<QSignalSpy> m_created;
    std::unique_ptr<QSignalSpy> m_loaded;
};

void tst_ProjectMain::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ProjectMain::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_panel = std::make_unique<ProjectMain>(QStringList(), QHash<QString, QVariant>());
    m_created = std::make_unique<QSignalSpy>(m_panel.get(), &ProjectMain::projectCreated);
    m_loaded = std::make_unique<QSignalSpy>(m_panel.get(), &ProjectMain::projectLoaded);
    m_panel->show();
}

void tst_ProjectMain::cleanup()
{
    m_created.reset();
    m_loaded.reset();
    m_panel.reset();
    m_folder.reset();
}

QFileDialog *tst_ProjectMain::fileDialog() const
{
    const QList<QFileDialog *> dialogs = m_panel->findChildren<QFileDialog *>();
    for (QFileDialog *dialog : dialogs) {
        if (dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

QMessageBox *tst_ProjectMain::question() const
{
    return m_panel->findChild<QMessageBox *>(QString(), Qt::FindDirectChildrenOnly);
}

void tst_ProjectMain::choose(const QString &name)
{
    QFileDialog *dialog = fileDialog();
    QVERIFY(dialog);
    dialog->setDirectory(m_folder->path());
    auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    QVERIFY(edit);
    // What is marked in the list counts for more than a name that was not typed with the keyboard focus.
    dialog->findChild<QListView *>(QStringLiteral("listView"))->clearSelection();
    edit->setText(name);
    QTest::keyClick(edit, Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
}

void tst_ProjectMain::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray tst_ProjectMain::content(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("cannot be read");
}

QString tst_ProjectMain::shownText() const
{
    return message()->findChild<QTextBrowser *>()->toPlainText();
}

void tst_ProjectMain::formIsAsDesigned()
{
    QCOMPARE(m_panel->windowTitle(), QStringLiteral("ProjectMain"));
    QCOMPARE(m_panel->font().family(), QStringLiteral("Segoe UI"));
    const auto *title = m_panel->findChild<QLabel *>(QStringLiteral("label"));
    QCOMPARE(title->text(), QStringLiteral("Project"));
    QCOMPARE(title->font().pointSize(), 16);
    for (const char *name : {"btn_open", "btn_create"}) {
        QCOMPARE(button(name)->font().pointSize(), 10);
        QVERIFY(!button(name)->icon().isNull());
    }
    QCOMPARE(button("btn_open")->text(), QStringLiteral("Open Project"));
    QCOMPARE(button("btn_create")->text(), QStringLiteral("Create Project"));
    const auto *recent = m_panel->findChild<QLabel *>(QStringLiteral("label_2"));
    QCOMPARE(recent->text(), QStringLiteral("Recent Projects"));
    QCOMPARE(recent->minimumWidth(), 300);
    QCOMPARE(list()->font().pointSize(), 9);
    QCOMPARE(list()->frameShape(), QFrame::NoFrame);
    QVERIFY(m_panel->findChild<QFrame *>(QStringLiteral("line")));
}

void tst_ProjectMain::dialogsStartInTheDocuments()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QVERIFY(QDir().mkpath(documents));
    button("btn_create")->click();
    QCOMPARE(fileDialog()->windowTitle(), QStringLiteral("Create Project"));
    QCOMPARE(fileDialog()->directory().path(), documents);
    QCOMPARE(fileDialog()->nameFilters(), QStringList{QStringLiteral("*.tpc")});
    fileDialog()->reject();
    button("btn_open")->click();
    QCOMPARE(fileDialog()->windowTitle(), QStringLiteral("Open Project"));
    QCOMPARE(fileDialog()->directory().path(), documents);
    QCOMPARE(fileDialog()->nameFilters(), QStringList{QStringLiteral("*.tpc")});
}

void tst_ProjectMain::recentProjectsAreListed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "Lab1"
                           << "C:/data/lab1.tpc"
                           << "Lab1\t[C:/data/lab1.tpc]";
    QTest::newRow("base name up to the first dot") << "Lab"
                                                   << "/data/lab.old.tpc"
                                                   << "Lab\t[/data/lab.tpc]";
    QTest::newRow("other suffix") << "Report"
                                  << "/data/report.txt"
                                  << "Report\t[/data/report.tpc]";
    const QString folder70 = QLatin1Char('/') + QString(69, QLatin1Char('d'));
    QTest::newRow("folder of 70") << "Lab" << folder70 + "/lab.tpc"
                                  << "Lab\t[" + folder70 + "/lab.tpc]";
    const QString folder80 = folder70 + QString(10, QLatin1Char('e'));
    QTest::newRow("folder of 80") << "Lab" << folder80 + "/lab.tpc"
                                  << "Lab\t[" + folder70 + ".../lab.tpc]";
}

void tst_ProjectMain::recentProjectsAreListed()
{
    QFETCH(QString, name);
    QFETCH(QString, path);
    QFETCH(QString, text);
    ProjectMain panel({QStringLiteral("First"), name},
                      {{name, path}, {QStringLiteral("First"), QStringLiteral("/data/first.tpc")}});
    const auto *items = panel.findChild<QListWidget *>();
    QCOMPARE(items->count(), 2);
    QCOMPARE(items->item(0)->text(), QStringLiteral("First\t[/data/first.tpc]"));
    QCOMPARE(items->item(1)->text(), text);
    QCOMPARE(items->item(1)->data(Qt::ToolTipRole).toString(), path);
}

void tst_ProjectMain::recentProjectIsHandedOnByItsPath()
{
    // Neither the length nor the presence of the file matters here.
    const QString path = QStringLiteral("/nowhere/a name longer than twenty.old.tpc");
    ProjectMain panel({QStringLiteral("Lab"), QStringLiteral("Gone")}, {{QStringLiteral("Lab"), path}});
    QSignalSpy loaded(&panel, &ProjectMain::projectLoaded);
    const auto *items = panel.findChild<QListWidget *>();
    panel.slotRecentProject(items->item(0));
    QCOMPARE(loaded.takeFirst().at(0).toString(), path);
    panel.slotRecentProject(items->item(1));
    QCOMPARE(loaded.takeFirst().at(0).toString(), QString());
    QVERIFY(!panel.findChild<MessageDialog *>());
}

void tst_ProjectMain::recentProjectOpensWithEnter()
{
    ProjectMain panel({QStringLiteral("Lab")}, {{QStringLiteral("Lab"), QStringLiteral("/data/lab.tpc")}});
    QSignalSpy loaded(&panel, &ProjectMain::projectLoaded);
    panel.show();
    auto *items = panel.findChild<QListWidget *>();
    items->setCurrentRow(0);
    QTest::keyClick(items, Qt::Key_Return);
    QCOMPARE(loaded.takeFirst().at(0).toString(), QStringLiteral("/data/lab.tpc"));
}

void tst_ProjectMain::keyboardStartsAtTheWayInThatIsThere()
{
    m_panel->takeFocus();
    QCOMPARE(m_panel->focusWidget(), m_panel->findChild<QPushButton *>(QStringLiteral("btn_create")));

    ProjectMain panel({QStringLiteral("Lab"), QStringLiteral("Attic")},
                      {{QStringLiteral("Lab"), QStringLiteral("/data/lab.tpc")}});
    QSignalSpy loaded(&panel, &ProjectMain::projectLoaded);
    panel.show();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    panel.takeFocus();
    QCOMPARE(QApplication::focusWidget(), panel.findChild<QListWidget *>());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(loaded.count(), 0);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCOMPARE(loaded.takeFirst().at(0).toString(), QStringLiteral("/data/lab.tpc"));
}

void tst_ProjectMain::newFileName_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("created");

    QTest::newRow("suffix is appended") << "Kitchen"
                                        << "Kitchen.tpc";
    QTest::newRow("suffix is there") << "Kitchen.tpc"
                                     << "Kitchen.tpc";
    QTest::newRow("16 characters") << "1234567890123456"
                                   << "1234567890123456.tpc";
    QTest::newRow("own suffix stays") << "report.txt"
                                      << "report.txt";
    QTest::newRow("own suffix, 20 characters") << "1234567890123456.txt"
                                               << "1234567890123456.txt";
    QTest::newRow("umlaut and blank") << QStringLiteral("K\u00fchl raum") << QStringLiteral("K\u00fchl raum.tpc");
}

void tst_ProjectMain::newFileName()
{
    QFETCH(QString, typed);
    QFETCH(QString, created);
    button("btn_create")->click();
    choose(typed);
    QCOMPARE(m_created->count(), 1);
    QCOMPARE(m_created->first().at(0).toString(), path(created));
    QCOMPARE(content(created), QByteArray());
    QVERIFY(!message());
    QVERIFY(!question());
}

void tst_ProjectMain::tooLongNewNameCreatesNothing_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("refused");

    QTest::newRow("17 characters") << "12345678901234567"
                                   << "12345678901234567.tpc";
    QTest::newRow("own suffix, 21 characters") << "12345678901234567.txt"
                                               << "12345678901234567.txt";
}

void tst_ProjectMain::tooLongNewNameCreatesNothing()
{
    QFETCH(QString, typed);
    QFETCH(QString, refused);
    button("btn_create")->click();
    choose(typed);
    QCOMPARE(m_created->count(), 0);
    QVERIFY(QDir(m_folder->path()).isEmpty());
    QVERIFY(message());
    QVERIFY(message()->isVisible());
    QCOMPARE(message()->findChild<QGroupBox *>()->title(), QStringLiteral("ERROR"));
    QCOMPARE(shownText(), QLatin1Char('"') + refused +
                              QStringLiteral("\" is too long.\nPlease retry.\nMax Length is 20 charactors."));
}

void tst_ProjectMain::namesThatLookLikeMarkupAreShownAsTheyAre()
{
    const QString name = QStringLiteral("<b>123456789012345678");
    button("btn_create")->click();
    choose(name);
    QVERIFY(message());
    QCOMPARE(shownText(), QLatin1Char('"') + name +
                              QStringLiteral(".tpc\" is too long.\nPlease retry.\nMax Length is 20 charactors."));
}

void tst_ProjectMain::uncreatableFileIsReported()
{
    button("btn_create")->click();
    choose(QStringLiteral("no folder/Kitchen"));
    QCOMPARE(m_created->count(), 0);
    QVERIFY(message());
    QCOMPARE(message()->findChild<QGroupBox *>()->title(), QStringLiteral("ERROR"));
    QCOMPARE(shownText(), QStringLiteral("Unable to open the project file."));
}

void tst_ProjectMain::chosenExistingFileIsEmptiedFirst()
{
    const QString name = QStringLiteral("1234567890123456.tpc");
    write(name, "old project");
    QByteArray contentWhenTold("not told");
    connect(m_panel.get(), &ProjectMain::projectCreated, this, [&] { contentWhenTold = content(name); });
    button("btn_create")->click();
    choose(name);
    QVERIFY(question());
    question()->button(QMessageBox::Yes)->click();
    QCOMPARE(m_created->count(), 1);
    QCOMPARE(m_created->first().at(0).toString(), path(name));
    QCOMPARE(contentWhenTold, QByteArray());
}

void tst_ProjectMain::questionIsAboutTheFileThatIsWritten_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("without suffix") << "Kitchen";
    QTest::newRow("with suffix") << "Kitchen.tpc";
    QTest::newRow("below a folder with a dot") << "%1/Kitchen";
}

void tst_ProjectMain::questionIsAboutTheFileThatIsWritten()
{
    QFETCH(QString, typed);
    m_folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/folder.with.dots-XXXXXX"));
    write(QStringLiteral("Kitchen.tpc"), "precious");
    button("btn_create")->click();
    choose(typed.contains(QLatin1Char('%')) ? typed.arg(m_folder->path()) : typed);
    QVERIFY(question());
    QVERIFY(question()->isVisible());
    QCOMPARE(question()->text(), QDir::toNativeSeparators(path(QStringLiteral("Kitchen.tpc"))) +
                                     QStringLiteral(" already exists.\nDo you want to replace it?"));
    QCOMPARE(question()->textFormat(), Qt::PlainText);
    QCOMPARE(content(QStringLiteral("Kitchen.tpc")), QByteArray("precious"));
    QCOMPARE(m_created->count(), 0);
    question()->button(QMessageBox::Yes)->click();
    QCOMPARE(m_created->count(), 1);
    QCOMPARE(content(QStringLiteral("Kitchen.tpc")), QByteArray());
}

void tst_ProjectMain::refusedReplacementAsksForAnotherName()
{
    write(QStringLiteral("Kitchen.tpc"), "precious");
    button("btn_create")->click();
    choose(QStringLiteral("Kitchen"));
    QVERIFY(question());
    QTest::keyClick(question(), Qt::Key_Escape);
    QCOMPARE(m_created->count(), 0);
    QCOMPARE(content(QStringLiteral("Kitchen.tpc")), QByteArray("precious"));
    QVERIFY(fileDialog());
    QCOMPARE(fileDialog()->directory().path(), m_folder->path());
    choose(QStringLiteral("Cellar"));
    QCOMPARE(m_created->count(), 1);
    QCOMPARE(m_created->first().at(0).toString(), path(QStringLiteral("Cellar.tpc")));
    QCOMPARE(content(QStringLiteral("Kitchen.tpc")), QByteArray("precious"));
}

void tst_ProjectMain::anotherProjectsRecordingIsLeftToIt_data()
{
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("recording");
    QTest::addColumn<QString>("proposed");
    QTest::newRow("the same up to a point") << "Room 1.1"
                                            << "Room 1.2"
                                            << "Room 1.dat"
                                            << "Room 1-2.tpc";
    QTest::newRow("with the usual suffix") << "Room 1.1.tpc"
                                           << "Room 1.2.tpc"
                                           << "Room 1.dat"
                                           << "Room 1-2.tpc";
    QTest::newRow("of a renamed project") << "Cellar.tpc"
                                          << "Kitchen"
                                          << "Kitchen.dat"
                                          << "Kitchen 2.tpc";
    QTest::newRow("of a copied project") << "Copy of Kitchen.tpc"
                                         << "Kitchen.1234567890"
                                         << "Kitchen.dat"
                                         << "Kitchen-12345678.tpc";
}

void tst_ProjectMain::anotherProjectsRecordingIsLeftToIt()
{
    QFETCH(QString, other);
    QFETCH(QString, typed);
    QFETCH(QString, recording);
    QFETCH(QString, proposed);
    write(other, "projectName=x\ndatabaseName=" + recording.toUtf8() + "\n");
    write(QStringLiteral("Kitchen.tpc.lock"), "no project");
    button("btn_create")->click();
    choose(typed);
    QVERIFY(message());
    QCOMPARE(shownText(), QStringLiteral("The project \"%1\" records into \"%2\" already.\nPlease choose another name.")
                              .arg(other, recording));
    QCOMPARE(m_created->count(), 0);
    QVERIFY(!QFile::exists(path(typed)));
    // The name that is proposed works.
    message()->close();
    QVERIFY(fileDialog());
    QCOMPARE(fileDialog()->selectedFiles(), QStringList(path(proposed)));
    choose(proposed);
    QCOMPARE(m_created->count(), 1);
    QCOMPARE(m_created->first().at(0).toString(), path(proposed));
}

void tst_ProjectMain::proposedNamesWork()
{
    write(QStringLiteral("Room 1.1"), "projectName=x\ndatabaseName=Room 1.dat\n");
    write(QStringLiteral("Room 1-2.tpc"), "");
    write(QStringLiteral("Room 1-2 2.dat"), "");
    button("btn_create")->click();
    choose(QStringLiteral("Room 1.2"));
    QVERIFY(fileDialog());
    QCOMPARE(fileDialog()->selectedFiles(), QStringList(path(QStringLiteral("Room 1-2 3.tpc"))));
}

void tst_ProjectMain::openProjectIsNotEmptied_data()
{
    QTest::addColumn<QString>("locked");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("project") << "Kitchen.tpc"
                             << "The project is open in another Sorvanto Lite.\nPlease retry.";
    QTest::newRow("recording") << "Kitchen.dat"
                               << "Another open project records into \"Kitchen.dat\".\nPlease retry.";
}

void tst_ProjectMain::openProjectIsNotEmptied()
{
    QFETCH(QString, locked);
    QFETCH(QString, refusal);
    write(QStringLiteral("Kitchen.tpc"), "precious");
    StationLock other(path(locked));
    QVERIFY(other.acquire());
    button("btn_create")->click();
    choose(QStringLiteral("Kitchen"));
    QVERIFY(question());
    question()->button(QMessageBox::Yes)->click();
    QCOMPARE(shownText(), refusal);
    QCOMPARE(m_created->count(), 0);
    QCOMPARE(content(QStringLiteral("Kitchen.tpc")), QByteArray("precious"));
}

/// As another program may have made it since it was looked for: a link to nothing is not seen as a file either.
void tst_ProjectMain::fileMadeMeanwhileIsNotEmptied()
{
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere")), path(QStringLiteral("Kitchen.tpc"))));
    button("btn_create")->click();
    choose(QStringLiteral("Kitchen"));
    QCOMPARE(m_created->count(), 0);
    QVERIFY(!QFile::exists(path(QStringLiteral("elsewhere"))));
    QVERIFY(question());
    QVERIFY(question()->text().endsWith(QStringLiteral("already exists.\nDo you want to replace it?")));
}

void tst_ProjectMain::existingFileIsHandedOn()
{
    const QString name = QStringLiteral("1234567890123456.tpc");
    write(name, "project");
    button("btn_open")->click();
    choose(name);
    QCOMPARE(m_loaded->count(), 1);
    QCOMPARE(m_loaded->first().at(0).toString(), path(name));
    QCOMPARE(content(name), QByteArray("project"));
    QVERIFY(!message());
}

void tst_ProjectMain::tooLongExistingNameIsRefused()
{
    const QString name = QStringLiteral("12345678901234567.tpc");
    write(name, "project");
    button("btn_open")->click();
    choose(name);
    QCOMPARE(m_loaded->count(), 0);
    QVERIFY(message());
    QCOMPARE(shownText(),
             QLatin1Char('"') + name + QStringLiteral("\" is too long.\nPlease retry.\nMax Length is 20 charactors."));
}

void tst_ProjectMain::unreadableFileIsReported()
{
    button("btn_open")->click();
    // The file goes away between the operator's choice and the look at it.
    emit fileDialog()->fileSelected(path(QStringLiteral("Gone.tpc")));
    QCOMPARE(m_loaded->count(), 0);
    QVERIFY(message());
    QCOMPARE(shownText(), QStringLiteral("Unable to open the project file."));
}

void tst_ProjectMain::cancelDoesNothing_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("create") << QByteArrayLiteral("btn_create");
    QTest::newRow("open") << QByteArrayLiteral("btn_open");
}

void tst_ProjectMain::cancelDoesNothing()
{
    QFETCH(QByteArray, name);
    button(name.constData())->click();
    const QPointer<QFileDialog> dialog = fileDialog();
    QVERIFY(dialog);
    dialog->reject();
    QTRY_VERIFY(!dialog);
    QCOMPARE(m_created->count() + m_loaded->count(), 0);
    QVERIFY(!message());
    QVERIFY(!question());
}

void tst_ProjectMain::panelMayGoWhileItsDialogIsOpen()
{
    button("btn_create")->click();
    QVERIFY(fileDialog());
    m_panel.reset();
    QCoreApplication::processEvents();
}

QTEST_MAIN(tst_ProjectMain)
#include "tst_ProjectMain.moc"
