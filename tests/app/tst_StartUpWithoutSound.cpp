#include "app/StartUp.h"
#include "project/AppSettings.h"
#include "project/ProjectFile.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <csignal>

namespace {

/// Keeps the titles of the boxes that were shown, and asks the program to end at the first.
class BoxWatch : public QObject
{
public:
    BoxWatch() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *box = qobject_cast<QMessageBox *>(watched);
        if (event->type() != QEvent::Show || !box)
            return false;
        m_titles << box->windowTitle();
        if (m_titles.size() == 1)
            ::raise(SIGTERM);
        return false;
    }
    QStringList titles() const { return m_titles; }

private:
    QStringList m_titles;
};

} // namespace

/// A host without a sound device: the operator is told so before anything else happens.
class tst_StartUpWithoutSound : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // Only an event loop that runs and ends takes the toolkit out of the state of ending, in which no box waits.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
    }

    void aTerminationSignalClosesTheBox()
    {
        QStringList boxes;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&boxes, &watch] {
            const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            watch.stop();
            boxes << box->windowTitle() + QLatin1Char('|') + box->text();
            ::raise(SIGTERM);
        });
        watch.start(10);
        QCOMPARE(runStation(*qApp), 0);
        QCOMPARE(boxes,
                 QStringList{QStringLiteral("Audio|Raw audio format not supported by backend, cannot play audio!")});
    }

    void oneSignalIsEnoughForAllBoxes()
    {
        const QTemporaryDir folder;
        recentProjectThatCannotBeRecorded(folder);
        const BoxWatch watch;
        bool waited = false;
        QTimer lastResort;
        connect(&lastResort, &QTimer::timeout, this, [&waited] {
            waited = true;
            ::raise(SIGTERM);
        });
        lastResort.start(20000);
        QCOMPARE(runStation(*qApp), 0);
        QVERIFY(!waited);
        QCOMPARE(watch.titles(), QStringList({QStringLiteral("Audio"), QStringLiteral("ERROR")}));
    }

private:
    static void recentProjectThatCannotBeRecorded(const QTemporaryDir &folder)
    {
        const QString path = folder.filePath(QStringLiteral("Kitchen.tpc"));
        ProjectFile file(path);
        QVERIFY(file.create(QStringLiteral("Kitchen"), 1000) && file.saveDevices({}));
        QVERIFY(QDir().mkpath(folder.filePath(QStringLiteral("Kitchen.dat"))));
        QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite")).clear();
        AppSettings settings;
        settings.autoLoad = true;
        QVERIFY(settings.saveAutoFlags());
        settings.addRecentProject(QStringLiteral("Kitchen"), path);
    }
};

QTEST_MAIN(tst_StartUpWithoutSound)
#include "tst_StartUpWithoutSound.moc"
