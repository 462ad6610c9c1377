#include "project/ProjectLock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// This program, started anew, holds a project's lock until it is killed.
class OtherStation : public QProcess
{
public:
    bool open(const QString &project)
    {
        start(QCoreApplication::applicationFilePath(), {QStringLiteral("--hold"), project});
        return waitForReadyRead() && readAll() == "held\n";
    }
    void crash()
    {
        kill();
        waitForFinished();
    }
    ~OtherStation() override { crash(); }
};

int hold(const QString &project)
{
    ProjectLock lock(project);
    QFile out;
    if (!lock.acquire() || !out.open(stdout, QIODevice::WriteOnly))
        return 1;
    out.write("held\n");
    out.flush();
    return QCoreApplication::exec();
}

} // namespace

class tst_ProjectLock : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_project = write(QStringLiteral("Kitchen.tpc"), "[General]\n");
    }

    void aProjectIsLockedOnce()
    {
        {
            ProjectLock first(m_project);
            QVERIFY(first.acquire());
            ProjectLock second(m_project);
            QVERIFY(!second.acquire());
            QCOMPARE(second.refusal(), m_refusal);
            // A refused station must not have taken anything from the one that has the project.
            QVERIFY(!ProjectLock(m_project).acquire());
        }
        QVERIFY(!QFile::exists(lockFile()));
        ProjectLock third(m_project);
        QVERIFY(third.acquire());
    }

    void otherProjectsAreFree()
    {
        ProjectLock lock(m_project);
        QVERIFY(lock.acquire());
        ProjectLock other(write(QStringLiteral("Lab.tpc"), {}));
        QVERIFY(other.acquire());
    }

    void itIsTheFileThatCounts()
    {
        const QString link = m_folder->filePath(QStringLiteral("Link.tpc"));
        QVERIFY(QFile::link(m_project, link));
        ProjectLock lock(m_project);
        QVERIFY(lock.acquire());
        QVERIFY(lock.isOn(link));
        QVERIFY(!ProjectLock(link).acquire());
        QVERIFY(!lock.isOn(m_folder->filePath(QStringLiteral("Lab.tpc"))));
    }

    void anotherProcessHoldsIt()
    {
        OtherStation other;
        QVERIFY(other.open(m_project));
        ProjectLock lock(m_project);
        QVERIFY(!lock.acquire());
        QCOMPARE(lock.refusal(), m_refusal);
    }

    void aCrashLeavesNoLock()
    {
        OtherStation other;
        QVERIFY(other.open(m_project));
        other.crash();
        QVERIFY(QFile::exists(lockFile()));
        ProjectLock lock(m_project);
        QVERIFY(lock.acquire());
    }

    void aCrashedStationsNumberMayBeInUseAgain()
    {
        // A lock file that names this very process, and that nobody holds.
        {
            ProjectLock lock(m_project);
            QVERIFY(lock.acquire());
            QVERIFY(QFile::copy(lockFile(), lockFile() + QStringLiteral(".copy")));
        }
        QVERIFY(QFile::rename(lockFile() + QStringLiteral(".copy"), lockFile()));
        ProjectLock lock(m_project);
        QVERIFY(lock.acquire());
        QVERIFY(!ProjectLock(m_project).acquire());
    }

    void anEmptyLockFileIsNoLock()
    {
        write(QStringLiteral("Kitchen.tpc.lock"), {});
        ProjectLock lock(m_project);
        QVERIFY(lock.acquire());
    }

    void anotherComputerIsNamed()
    {
        write(QStringLiteral("Kitchen.tpc.lock"), "4711\nsorvanto-lite\ncellar-pc\n");
        ProjectLock lock(m_project);
        QVERIFY(!lock.acquire());
        QCOMPARE(lock.refusal(),
                 QStringLiteral("The project is open in Sorvanto Lite on the computer \"cellar-pc\".\nPlease retry."));
        QVERIFY(QFile::exists(lockFile()));
    }

    void aFolderThatTakesNoFileIsNoObstacle()
    {
        // Nobody can put a file there, not even the superuser.
        const QString project = QStringLiteral("/proc/self/Kitchen.tpc");
        ProjectLock lock(project);
        QVERIFY(lock.acquire());
        QVERIFY(!ProjectLock(project).acquire());
    }

private:
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(m_folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write");
        return file.fileName();
    }
    QString lockFile() const { return m_project + QStringLiteral(".lock"); }

    const QString m_refusal = QStringLiteral("The project is open in another Sorvanto Lite.\nPlease retry.");
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_project;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--hold"))
        return hold(arguments.value(2));
    tst_ProjectLock test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ProjectLock.moc"
