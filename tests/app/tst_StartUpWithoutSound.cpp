#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "app/StartUp.h"
#include "project/AppSettings.h"
#include "store/InsertSerialData.h"

#include <QDir>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <csignal>

namespace {

/// What is done with the box that is open; true ends the watch.
using Use = std::function<bool(QMessageBox &box)>;

/// Runs a station from start to end with somebody who looks at its boxes. Ends it, with code -1, after 20 seconds.
int runAndUseBoxes(const Use &use)
{
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box && use(*box))
            watch.stop();
    });
    watch.start(10);
    bool waited = false;
    QTimer lastResort;
    QObject::connect(&lastResort, &QTimer::timeout, &lastResort, [&waited] {
        waited = true;
        ::raise(SIGTERM);
    });
    lastResort.start(20000);
    const int code = runStation(*qApp, {}, [](unsigned long) {});
    return waited ? -1 : code;
}

QString described(const QMessageBox &box)
{
    return box.windowTitle() + QLatin1Char('|') + box.text();
}

} // namespace

/// A host without a sound device: the operator is told so, and nothing else waits for that.
class tst_StartUpWithoutSound : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // Only an event loop that runs and ends takes the toolkit out of the state of ending, in which no box waits.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
        m_fixture = std::make_unique<StationFixture>();
        m_fixture->writeProject(m_name, {m_fixture->addLogger()}, 1000);
        m_fixture->listProject(m_name, true, true);
    }

    void cleanup() { m_fixture.reset(); }

    void theBoxIsACriticalOne()
    {
        QStringList boxes;
        const int code = runAndUseBoxes([&boxes](QMessageBox &box) {
            boxes << described(box);
            if (box.icon() == QMessageBox::Critical)
                boxes << QStringLiteral("critical");
            if (box.isModal() && box.standardButtons() == QMessageBox::Ok)
                boxes << QStringLiteral("modal, OK");
            ::raise(SIGTERM);
            return true;
        });
        QCOMPARE(code, 0);
        QCOMPARE(boxes,
                 (QStringList{QStringLiteral("Audio|Raw audio format not supported by backend, cannot play audio!"),
                              QStringLiteral("critical"), QStringLiteral("modal, OK")}));
    }

    void recordingDoesNotWaitForTheAnswer()
    {
        int pendingBefore = -1;
        int readings = 0;
        bool windowIsShown = false;
        const int code = runAndUseBoxes([&](QMessageBox &box) {
            const int pending = InsertSerialData::pendingCount();
            if (pendingBefore != -1)
                readings += qMax(0, pending - pendingBefore);
            pendingBefore = pending;
            if (readings < 2)
                return false;
            windowIsShown = box.parentWidget() && box.parentWidget()->isVisible();
            ::raise(SIGTERM);
            return true;
        });
        QCOMPARE(code, 0);
        QVERIFY(windowIsShown);
        QVERIFY(m_fixture->readingCount(m_name) >= 2);
        QVERIFY(m_fixture->rows(m_name).last().isGap());
    }

    void theAnswerEndsNothingButTheBox()
    {
        QPointer<QMessageBox> answered;
        bool goesOn = false;
        QTimer after;
        connect(&after, &QTimer::timeout, this, [&] {
            if (answered)
                return;
            after.stop();
            const QWidgetList windows = QApplication::topLevelWidgets();
            for (QWidget *window : windows) {
                if (auto *station = qobject_cast<SorvantoMain *>(window)) {
                    goesOn = station->isVisible() && station->isRecording();
                    station->endProgram();
                }
            }
        });
        const int code = runAndUseBoxes([&](QMessageBox &box) {
            answered = &box;
            box.button(QMessageBox::Ok)->click();
            after.start(10);
            return true;
        });
        QCOMPARE(code, 0);
        QVERIFY(goesOn);
    }

    void aRecordingThatCannotBeCreatedEndsTheProgramFirst()
    {
        QVERIFY(QDir().mkpath(m_fixture->recordingPath(m_name)));
        QStringList boxes;
        const int code = runAndUseBoxes([&boxes](QMessageBox &box) {
            boxes << described(box);
            ::raise(SIGTERM);
            return true;
        });
        QCOMPARE(code, 0);
        QCOMPARE(boxes, QStringList{QStringLiteral("ERROR|Create database error!\nExit program.")});
    }

private:
    const QString m_name = QStringLiteral("Kitchen");
    std::unique_ptr<StationFixture> m_fixture;
};

QTEST_MAIN(tst_StartUpWithoutSound)
#include "tst_StartUpWithoutSound.moc"
