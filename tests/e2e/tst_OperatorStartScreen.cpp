#include "OperatorDesk.h"
#include "OperatorSteps.h"

#include "project/AppSettings.h"
#include "project/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

const QStringList names{QStringLiteral("Kitchen"), QStringLiteral("Greenhouse"), QStringLiteral("Laboratory")};

QString rowOf(const QString &name)
{
    return QStringLiteral("%1\t[%2]").arg(name, OperatorDesk::path(name + ".tpc"));
}

/// A project with the first logger of the network.
void writeProject(const QString &name)
{
    DeviceEntry entry;
    entry.name = QStringLiteral("Bench");
    entry.serialNumber = LoggerProcess::key(1);
    entry.address = LoggerProcess::address(1);
    ProjectFile file(OperatorDesk::path(name + ".tpc"));
    QVERIFY(file.create(name, 1000));
    QVERIFY(file.saveDevices({entry}));
    QVERIFY(file.saveLayout(1000, {}));
}

} // namespace

/// Ways into a project, and wrong turns on them.
class tst_OperatorStartScreen : public OperatorTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_desk.reset(); }

    void theStartScreen();

private:
    void seeRecentProjects();
    void chooseTooLongAName();
    void openNoProject();
    void keepAnExistingProject();
    void openByTheDialog();

    std::unique_ptr<OperatorDesk> m_desk;
};

void tst_OperatorStartScreen::initTestCase()
{
    m_desk = std::make_unique<OperatorDesk>(1);
    AppSettings settings;
    for (const QString &name : names) {
        writeProject(name);
        settings.recentProjectList << name;
        settings.recentProjects.insert(name, OperatorDesk::path(name + ".tpc"));
    }
    settings.recentProjectList << QStringLiteral("Attic");
    settings.recentProjects.insert(QStringLiteral("Attic"), OperatorDesk::path("Attic.tpc"));
    QVERIFY(settings.save());
}

void tst_OperatorStartScreen::theStartScreen()
{
    const int code = OperatorDesk::runStation([this] {
        STEP(seeRecentProjects);
        STEP(chooseTooLongAName);
        STEP(openNoProject);
        STEP(keepAnExistingProject);
        STEP(openByTheDialog);
        QVERIFY(exitStation());
    });
    QCOMPARE(code, 0);
}

void tst_OperatorStartScreen::seeRecentProjects()
{
    QVERIFY(Operator::sees("ProjectMain"));
    // One of them has no file any more.
    QCOMPARE(Operator::rows("listWidget"), QStringList({rowOf(names.at(0)), rowOf(names.at(1)), rowOf(names.at(2))}));
    Operator::photograph("start", "SorvantoMain");
}

void tst_OperatorStartScreen::chooseTooLongAName()
{
    QVERIFY(Operator::click("btn_create"));
    QVERIFY(Operator::type("QFileDialog/fileNameEdit", "Seventeen letters"));
    QVERIFY(Operator::press(Qt::Key_Return));
    SEES_EQUAL(Operator::message(), QString("\"Seventeen letters.tpc\" is too long.\nPlease retry.\n"
                                            "Max Length is 20 charactors."));
    Operator::photograph("message-too-long");
    QVERIFY(Operator::closeMessage());
    QVERIFY(!QFile::exists(OperatorDesk::path("Seventeen letters.tpc")));
}

void tst_OperatorStartScreen::openNoProject()
{
    QFile file(OperatorDesk::path("letter.tpc"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Dear Sir or Madam,\n");
    file.close();
    QVERIFY(Operator::click("btn_open"));
    QVERIFY(Operator::type("QFileDialog/fileNameEdit", "letter.tpc"));
    QVERIFY(Operator::press(Qt::Key_Return));
    SEES_EQUAL(Operator::message(), QString("There is no device information!"));
    QVERIFY(Operator::closeMessage());
    QVERIFY(Operator::sees("ProjectMain"));
}

/// The name typed has no suffix; the question is about the file that would be written.
void tst_OperatorStartScreen::keepAnExistingProject()
{
    const auto before = ProjectFile(OperatorDesk::path("Kitchen.tpc")).readDevices();
    QVERIFY(Operator::click("btn_create"));
    QVERIFY(Operator::type("QFileDialog/fileNameEdit", "Kitchen"));
    QVERIFY(Operator::press(Qt::Key_Return));
    SEES(Operator::text("qt_msgbox_label").startsWith(OperatorDesk::path("Kitchen.tpc") + " already"));
    Operator::photograph("question-replace");
    // The safe answer is the one that Return gives; it leads back to the file dialog.
    QVERIFY(Operator::press(Qt::Key_Return));
    SEES(Operator::sees("QFileDialog"));
    QVERIFY(Operator::press(Qt::Key_Escape));
    SEES(!Operator::sees("QFileDialog"));
    QVERIFY(ProjectFile(OperatorDesk::path("Kitchen.tpc")).readDevices() == before);
    QVERIFY(Operator::sees("ProjectMain"));
}

void tst_OperatorStartScreen::openByTheDialog()
{
    QVERIFY(Operator::click("btn_open"));
    SEES(Operator::sees("QFileDialog"));
    Operator::photograph("open-dialog");
    QVERIFY(Operator::type("QFileDialog/fileNameEdit", "Greenhouse.tpc"));
    QVERIFY(Operator::press(Qt::Key_Return));
    SEES(Operator::sees("ProjectCenter"));
    QCOMPARE(Operator::text("label_projectname"), OperatorDesk::path("Greenhouse.tpc"));
    QCOMPARE(Operator::rows("list_project"), QStringList{"Bench"});
    SEES(!Operator::text("widget_01/label_number").isEmpty());
    QVERIFY(Operator::choose("command_project", {"Close"}));
    SEES(Operator::sees("ProjectMain"));
    // One that is opened again does not move to the front.
    QCOMPARE(Operator::rows("listWidget").first(), rowOf(names.at(0)));
}

OPERATOR_TEST_MAIN(tst_OperatorStartScreen)
#include "tst_OperatorStartScreen.moc"
