#include "OperatorDesk.h"
#include "OperatorSteps.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QWindow>

namespace {

// As an operator may well call it.
const QString name = QString::fromUtf8("Kühl raum");

QSize windowSize()
{
    const QWidget *window = Operator::find("SorvantoMain");
    return window ? window->size() : QSize();
}

QSize screenSize()
{
    return QGuiApplication::primaryScreen()->size();
}

} // namespace

/// The frame around it all: menus, full screen, sibling programs, About box.
class tst_OperatorWindow : public OperatorTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_desk.reset(); }

    void theWindow();

private:
    void lookAtTheMenus();
    void missSiblings();
    void startSiblings();
    void fillTheScreen();
    void expand();
    void readAbout();
    void installStandIn(const QString &program);
    QString arguments(const QString &program) const;

    std::unique_ptr<OperatorDesk> m_desk;
};

void tst_OperatorWindow::initTestCase()
{
    m_desk = std::make_unique<OperatorDesk>(2);
    QVERIFY(QDir().mkpath(OperatorDesk::home() + "/programs"));
    qputenv("PATH", (OperatorDesk::home() + "/programs:").toLocal8Bit() + qgetenv("PATH"));
}

void tst_OperatorWindow::theWindow()
{
    const int code = OperatorDesk::runStation([this] {
        QVERIFY(createProject(name, {LoggerProcess::key(1), LoggerProcess::key(2)}));
        SEES(!Operator::text("widget_09/label_number").isEmpty());
        STEP(lookAtTheMenus);
        STEP(missSiblings);
        STEP(startSiblings);
        STEP(fillTheScreen);
        STEP(expand);
        STEP(readAbout);
        QVERIFY(Operator::closeWindow("SorvantoMain"));
        SEES(!Operator::sees("SorvantoMain"));
    });
    QCOMPARE(code, 0);
}

void tst_OperatorWindow::lookAtTheMenus()
{
    QVERIFY(Operator::click("command_project"));
    SEES_EQUAL(Operator::entries(), QStringList({"Add/Delete", "Close", "Auto Load Recent Project", "Auto Start Record",
                                                 "Keep Socket Connection", "Refresh Devices", "Exit"}));
    Operator::photograph("menu-project");
    QVERIFY(Operator::press(Qt::Key_Escape));
    QVERIFY(Operator::choose("command_record", {"Report"}));
    SEES_EQUAL(Operator::entries(),
               QStringList({"Daily Report", "(Weekly Report)", "(Monthly Report)", "(HACCP Report)"}));
    Operator::photograph("menu-record");
    QVERIFY(Operator::press(Qt::Key_Escape));
    QVERIFY(Operator::press(Qt::Key_Escape));
    QVERIFY(Operator::click("command_screen"));
    SEES_EQUAL(Operator::entries(), QStringList({"FullScreen", "Expansion Mode"}));
    Operator::photograph("menu-window");
    QVERIFY(Operator::press(Qt::Key_Escape));
}

void tst_OperatorWindow::missSiblings()
{
    QVERIFY(Operator::choose("command_record", {"Lookback"}));
    SEES_EQUAL(Operator::message(), QString("Please check the Lookback execution file."));
    QVERIFY(Operator::closeMessage());
    QVERIFY(Operator::choose("command_record", {"Report", "Daily Report"}));
    SEES_EQUAL(Operator::message(), QString("Please check the Sheetsmith execution file."));
    QVERIFY(Operator::closeMessage());
}

void tst_OperatorWindow::startSiblings()
{
    for (const QString program : {"Lookback", "Sheetsmith"})
        installStandIn(program);
    const QString project = QLatin1Char('\'') + OperatorDesk::path(name + ".tpc") + QLatin1Char('\'');
    QVERIFY(Operator::choose("command_record", {"Lookback"}));
    SEES_EQUAL(arguments("Lookback"), project);
    QVERIFY(arguments("Sheetsmith").isNull());
    QVERIFY(Operator::choose("command_record", {"Report", "Daily Report"}));
    SEES_EQUAL(arguments("Sheetsmith"), project);
    QCOMPARE(Operator::message(), QString());
}

/// A program that writes down its arguments, joined with a blank as the siblings do.
void tst_OperatorWindow::installStandIn(const QString &program)
{
    QFile script(OperatorDesk::home() + "/programs/" + program);
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf %s \"$*\" >\"$0.new\"\nmv \"$0.new\" \"$0.arguments\"\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

/// Null as long as the stand-in has not run.
QString tst_OperatorWindow::arguments(const QString &program) const
{
    QFile file(OperatorDesk::home() + "/programs/" + program + ".arguments");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void tst_OperatorWindow::fillTheScreen()
{
    const QSize before = windowSize();
    QVERIFY(before != screenSize());
    QVERIFY(Operator::choose("command_screen", {"FullScreen"}));
    SEES_EQUAL(windowSize(), screenSize());
    Operator::photograph("full-screen");
    QVERIFY(Operator::click("command_screen"));
    SEES_EQUAL(Operator::entries(), QStringList({"FullScreen*", "Expansion Mode"}));
    QVERIFY(Operator::press(Qt::Key_Escape));
    QVERIFY(Operator::doubleClick("menuFrame/label_version"));
    SEES_EQUAL(windowSize(), before);
    QVERIFY(Operator::click("command_screen"));
    SEES_EQUAL(Operator::entries(), QStringList({"FullScreen", "Expansion Mode"}));
    QVERIFY(Operator::press(Qt::Key_Escape));
}

void tst_OperatorWindow::expand()
{
    QVERIFY(Operator::sees("list_project"));
    QVERIFY(Operator::choose("command_screen", {"Expansion Mode"}));
    SEES(!Operator::sees("list_project"));
    Operator::photograph("expansion-mode");
    QVERIFY(Operator::choose("command_screen", {"Expansion Mode"}));
    SEES(Operator::sees("list_project"));
}

/// The box blocks whoever has clicked, so it is read and closed from within.
void tst_OperatorWindow::readAbout()
{
    QString title;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->windowHandle()->isExposed())
            return;
        watch.stop();
        title = box->windowTitle();
        Operator::photograph("about");
        box->button(QMessageBox::Ok)->click();
    });
    watch.start(50);
    QVERIFY(Operator::click("command_help"));
    SEES_EQUAL(title, QStringLiteral("About SorvantoLite"));
}

OPERATOR_TEST_MAIN(tst_OperatorWindow)
#include "tst_OperatorWindow.moc"
