#include "Operator.h"

#include "project/ProjectLock.h"
#include "project/RecordingLock.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace {

const QString recordingRefusal = QStringLiteral("Another open project records into \"%1\".\nPlease retry.");
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

    void whatAnotherStationWritesIsNotRead()
    {
        m_op->fixture.writeProject(m_op->name, {});
        QFile file(m_op->projectPath());
        QVERIFY(file.resize(0));
        ProjectLock other(m_op->projectPath());
        QVERIFY(other.acquire());
        SorvantoMain station;
        station.projectLoaded(m_op->projectPath());
        QCOMPARE(shownMessages(), QStringList{refusal});
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
        // The return key may take up what the dialog proposes to complete the name with.
        dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
        screen->findChild<QMessageBox *>()->button(QMessageBox::Yes)->click();
        QCOMPARE(shownMessages(), QStringList{refusal});
        QCOMPARE(m_op->projectFile().readDevices()->size(), 1);
        QVERIFY(!shownScreen<ProjectManager>(second));

        emit screen->projectCreated(m_op->projectPath());
        QCOMPARE(m_op->projectFile().readDevices()->size(), 1);
        QVERIFY(!shownScreen<ProjectManager>(second));
    }

    void aCopyBesideItsOriginalIsRefused()
    {
        QVERIFY(m_op->openProject(1));
        const QString copy = m_op->fixture.projectPath(QStringLiteral("Copy"));
        QVERIFY(QFile::copy(m_op->projectPath(), copy));
        SorvantoMain second;
        second.projectLoaded(copy);
        QCOMPARE(shownMessages(), QStringList{recordingRefusal.arg(QStringLiteral("Kitchen.dat"))});
        QVERIFY(!second.isProjectOpen());
        QVERIFY(ProjectLock(copy).acquire());
        m_op->close();
        second.projectLoaded(copy);
        QVERIFY(second.isProjectOpen());
        m_op->station->projectLoaded(m_op->projectPath());
        QVERIFY(!m_op->station->isProjectOpen());
    }

    void twoNamesThatAreOneBeforeTheDotAreRefused()
    {
        const QString one = m_op->fixture.projectPath(QStringLiteral("Room 1.1"));
        const QString two = m_op->fixture.projectPath(QStringLiteral("Room 1.2"));
        for (const QString &path : {one, two}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        m_op->station->projectCreated(one);
        QVERIFY(m_op->manager());
        SorvantoMain second;
        second.projectCreated(two);
        QCOMPARE(shownMessages(), QStringList{recordingRefusal.arg(QStringLiteral("Room 1.dat"))});
        QVERIFY(!shownScreen<ProjectManager>(second));
        QCOMPARE(QFileInfo(two).size(), qint64(0));
        // One station may pass from one to the other.
        m_op->station->projectCreated(two);
        QVERIFY(m_op->manager());
        second.projectCreated(one);
        QVERIFY(!shownScreen<ProjectManager>(second));
    }

    void whatIsRefusedLeavesTheOpenProjectLocked()
    {
        QVERIFY(m_op->openProject(1));
        const QString copy = m_op->fixture.projectPath(QStringLiteral("Copy"));
        QVERIFY(QFile::copy(m_op->projectPath(), copy));
        m_op->fixture.writeProject(QStringLiteral("Lab"), {});
        const QString lab = m_op->fixture.projectPath(QStringLiteral("Lab"));
        SorvantoMain second;
        second.projectLoaded(lab);
        second.projectLoaded(copy);
        QVERIFY(second.isProjectOpen());
        QVERIFY(!ProjectLock(lab).acquire());
        QVERIFY(!RecordingLock(m_op->fixture.recordingPath(QStringLiteral("Lab"))).acquire());

        // A folder in the file's place refuses even the superuser.
        QVERIFY(QFile::remove(lab) && QDir().mkpath(lab));
        second.projectCreated(lab);
        QVERIFY(second.isProjectOpen());
        QVERIFY(!RecordingLock(m_op->fixture.recordingPath(QStringLiteral("Lab"))).acquire());
    }

private:
    std::unique_ptr<Operator> m_op;
};

STATION_TEST_MAIN(tst_SharedProject)
#include "tst_SharedProject.moc"
