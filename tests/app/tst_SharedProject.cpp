#include "Operator.h"

#include "project/ProjectLock.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>

namespace {

const QString refusal = QStringLiteral("The project is open in another Sorvanto Lite.\nPlease retry.");

} // namespace

/// Two stations and one project: it must not be recorded twice.
class tst_SharedProject : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_op = std::make_unique<Operator>(); }
    void cleanup() { m_op.reset(); }

    void theSecondStationIsRefused()
    {
        QVERIFY(m_op->openProject(1));
        SorvantoMain second;
        second.projectLoaded(m_op->projectPath());
        QCOMPARE(shownMessages(), QStringList{refusal});
        QVERIFY(!second.isProjectOpen());
        QVERIFY(second.configuredDevices().isEmpty());
        QVERIFY(shownScreen<ProjectMain>(second));
        QVERIFY(m_op->station->isProjectOpen());
    }

    void anAutomaticStartIsRefusedToo()
    {
        QVERIFY(m_op->openProject(1));
        m_op->fixture.listProject(m_op->name, true, true);
        SorvantoMain second;
        QVERIFY(!second.isProjectOpen());
        QVERIFY(!second.isRecording());
        QCOMPARE(shownMessages(), QStringList());
        second.show();
        QCOMPARE(shownMessages(), QStringList{refusal});
        second.hide();
        second.show();
        QCOMPARE(shownMessages(), QStringList{refusal});
    }

    void theProjectThatIsOpenStaysOpen()
    {
        QVERIFY(m_op->openProject(1));
        SorvantoMain second;
        m_op->fixture.writeProject(QStringLiteral("Lab"), {m_op->fixture.addLogger()});
        second.projectLoaded(m_op->fixture.projectPath(QStringLiteral("Lab")));
        second.projectLoaded(m_op->projectPath());
        QVERIFY(second.isProjectOpen());
        QVERIFY(labelText(second, "label_projectname").endsWith(QStringLiteral("/Lab.tpc")));
    }

    void aClosedProjectIsFree()
    {
        QVERIFY(m_op->openProject(1));
        SorvantoMain second;
        m_op->edit();
        second.projectLoaded(m_op->projectPath());
        QVERIFY(!second.isProjectOpen());
        m_op->close();
        second.projectLoaded(m_op->projectPath());
        QVERIFY(second.isProjectOpen());
    }

    void anEndedStationLeavesItFree()
    {
        QVERIFY(m_op->openProject(1));
        m_op->station.reset();
        m_op->startStation();
        m_op->station->projectLoaded(m_op->projectPath());
        QVERIFY(m_op->station->isProjectOpen());
    }

    void aStationMayOpenItsOwnProjectAgain()
    {
        QVERIFY(m_op->openProject(1));
        m_op->station->projectLoaded(m_op->projectPath());
        QVERIFY(m_op->station->isProjectOpen());
        QVERIFY(!ProjectLock(m_op->projectPath()).acquire());
    }

    void aProjectInUseIsNotReplacedByANewOne()
    {
        QVERIFY(m_op->openProject(1));
        SorvantoMain second;
        auto *screen = shownScreen<ProjectMain>(second);
        second.show();
        child<QPushButton>(*screen, "btn_create")->click();
        auto *dialog = screen->findChild<QFileDialog *>();
        dialog->setDirectory(m_op->fixture.path({}));
        auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        edit->setText(m_op->name);
        QTest::keyClick(edit, Qt::Key_Return);
        screen->findChild<QMessageBox *>()->button(QMessageBox::Yes)->click();
        QCOMPARE(shownMessages(), QStringList{refusal});
        QCOMPARE(m_op->projectFile().readDevices()->size(), 1);
        QVERIFY(!shownScreen<ProjectManager>(second));

        emit screen->projectCreated(m_op->projectPath());
        QCOMPARE(m_op->projectFile().readDevices()->size(), 1);
        QVERIFY(!shownScreen<ProjectManager>(second));
    }

private:
    std::unique_ptr<Operator> m_op;
};

STATION_TEST_MAIN(tst_SharedProject)
#include "tst_SharedProject.moc"
