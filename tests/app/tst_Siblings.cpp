#include "StationFixture.h"

#include "app/AboutText.h"
#include "app/SiblingProgram.h"
#include "app/SorvantoMain.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QMessageBox>
#include <QScopeGuard>
#include <QTimer>

/// The programs started on the open project, and the About box.
class tst_Siblings : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        m_pathBefore = qgetenv("PATH");
        QVERIFY(QDir(m_fixture->path({})).mkdir(QStringLiteral("programs")));
        qputenv("PATH", m_fixture->path(QStringLiteral("programs")).toLocal8Bit() + ':' + m_pathBefore);
    }

    void cleanup()
    {
        qputenv("PATH", m_pathBefore);
        m_fixture.reset();
    }

    void commandLineQuotesTheProject()
    {
        QCOMPARE(siblingCommandLine(QStringLiteral("Lookback"), QStringLiteral("C:/data/Kitchen.tpc")),
                 QStringLiteral("Lookback 'C:/data/Kitchen.tpc'"));
        QCOMPARE(siblingCommandLine(QStringLiteral("Lookback"), QStringLiteral("/my data/Kitchen.tpc")),
                 QStringLiteral("Lookback '/my data/Kitchen.tpc'"));
    }

    void startsEachOnTheProject_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("project");
        QTest::newRow("viewer") << "Lookback"
                                << "Kitchen";
        QTest::newRow("reports") << "Sheetsmith"
                                 << "Kitchen";
        QTest::newRow("blanks and umlaut") << "Lookback" << QString::fromUtf8("K\u00fchl  raum");
    }

    void startsEachOnTheProject()
    {
        QFETCH(QString, program);
        QFETCH(QString, project);
        installStandIn(program);
        m_fixture->writeProject(project, {});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(project));
        child<QLabel>(station, "label_record_endtime")->setText(QStringLiteral("2026-01-02 03:04:05"));
        if (program == QLatin1String("Lookback"))
            station.slotLookbackRecord();
        else
            station.slotReportDaily();
        QTRY_COMPARE(arguments(), QLatin1Char('\'') + m_fixture->projectPath(project) + QLatin1Char('\''));
        QCOMPARE(QSettings(m_fixture->projectPath(project), QSettings::IniFormat)
                     .value(QStringLiteral("record_stop_time"))
                     .toString(),
                 QStringLiteral("2026-01-02 03:04:05"));
        QCOMPARE(shownMessages(), QStringList());
    }

    void oneBesideOurOwnProgramIsFound()
    {
        installStandIn(QStringLiteral("Lookback"));
        qputenv("PATH", m_pathBefore);
        const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/Lookback");
        QFile::remove(beside);
        QVERIFY(QFile::rename(m_fixture->path(QStringLiteral("programs/Lookback")), beside));
        const auto remove = qScopeGuard([beside] { QFile::remove(beside); });
        const QString project = m_fixture->projectPath(QStringLiteral("Kitchen"));
        QVERIFY(startSibling(QStringLiteral("Lookback"), project));
        QTRY_COMPARE(arguments(), QLatin1Char('\'') + project + QLatin1Char('\''));
    }

    void withoutARecordingNothingIsStarted()
    {
        installStandIn(QStringLiteral("Lookback"));
        installStandIn(QStringLiteral("Sheetsmith"));
        SorvantoMain station;
        const LogCapture log;
        station.slotLookbackRecord();
        QCOMPARE(shownMessages(), QStringList{QStringLiteral("Database does not exist.")});
        station.slotReportDaily();
        QCOMPARE(shownMessages().size(), 2);
        // Whatever is started is logged first; a program takes its time to show that it runs.
        QCOMPARE(log.count(QStringLiteral("cmd :")), 0);
    }

    void saysWhichProgramIsMissing_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("viewer") << "Lookback";
        QTest::newRow("reports") << "Sheetsmith";
    }

    void saysWhichProgramIsMissing()
    {
        QFETCH(QString, program);
        // One in the working folder is not taken for ours.
        installStandIn(program);
        const QString folderBefore = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_fixture->path(QStringLiteral("programs"))));
        qputenv("PATH", m_pathBefore);
        m_fixture->writeProject(QStringLiteral("Kitchen"), {});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        if (program == QLatin1String("Lookback"))
            station.slotLookbackRecord();
        else
            station.slotReportDaily();
        QDir::setCurrent(folderBefore);
        QCOMPARE(shownMessages(), QStringList{QStringLiteral("Please check the %1 execution file.").arg(program)});
    }

    void aboutBoxSaysWhatTheProgramIs()
    {
        SorvantoMain station;
        QString title;
        QString text;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                title = box->windowTitle();
                text = box->text();
                box->accept();
            }
        });
        watch.start(10);
        station.slotCommandHelp();
        QCOMPARE(title, QStringLiteral("About SorvantoLite"));
        QCOMPARE(text, aboutText());
        QVERIFY(text.startsWith(QString::fromUtf8("<p><font size=5><b>SORVANTO\u00ae Lite </b></font></p>"
                                                  "<p><font size=3>V3.54</font></p>")));
        QVERIFY(text.contains(QString::fromUtf8(
            "<p><font size=3>Sorvanto Lite is data recording software for OSTRIVANE\u00ae ZP Series and "
            "TQ480 Series. it supports up to 32 channels data recording,  data viewer and "
            "data-reporter with easy way.</font></p><p><font size=3></font></p>")));
        QVERIFY(text.endsWith(QStringLiteral("<p style='margin-right:100;'>"
                                             "<img width=720 height=326 src=:/img/sorvanto_lite.png></p>")));
    }

private:
    /// A program that writes down its arguments, joined with a blank as the siblings do.
    void installStandIn(const QString &program)
    {
        QFile script(m_fixture->path(QStringLiteral("programs/") + program));
        QVERIFY(script.open(QIODevice::WriteOnly));
        const QByteArray target = m_fixture->path(QStringLiteral("arguments")).toLocal8Bit();
        script.write("#!/bin/sh\nprintf %s \"$*\" >'" + target + ".new'\nmv '" + target + ".new' '" + target + "'\n");
        script.close();
        QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    /// Null as long as no stand-in has run.
    QString arguments() const
    {
        QFile file(m_fixture->path(QStringLiteral("arguments")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    std::unique_ptr<StationFixture> m_fixture;
    QByteArray m_pathBefore;
};

STATION_TEST_MAIN(tst_Siblings)
#include "tst_Siblings.moc"
