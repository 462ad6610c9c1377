#include "device/ConfiguredDevice.h"
#include "dialogs/PlainToolTip.h"
#include "views/ProjectCenter.h"

#include <QDateTime>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString idle = QStringLiteral("color:rgb(192,192,192);background-color:transparent;");
const QString recording = QStringLiteral("color:rgb(255,255,147);background-color:transparent;");
const QString overLimit = QStringLiteral("color:rgb(230,80,80);background-color:transparent;");
const QString timeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");

QLabel *label(const QWidget &widget, const char *name)
{
    auto *found = widget.findChild<QLabel *>(QLatin1String(name));
    Q_ASSERT(found);
    return found;
}

bool sameIcon(const QIcon &icon, const QString &path)
{
    return icon.pixmap(50, 50).toImage() == QIcon(path).pixmap(50, 50).toImage();
}

} // namespace

class tst_ProjectCenter : public QObject
{
    Q_OBJECT

private slots:
    void databaseSize_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("colour");
        QTest::newRow("empty") << qint64(0) << "Database 0.00MB" << idle;
        QTest::newRow("one megabyte") << qint64(1048576) << "Database 1.00MB" << idle;
        QTest::newRow("rounded") << qint64(1600000) << "Database 1.53MB" << idle;
        QTest::newRow("largest in idle colour") << qint64(3221225471) << "Database 3072.00MB" << idle;
        QTest::newRow("smallest over the limit") << qint64(3221225472) << "Database 3072.00MB" << overLimit;
    }

    void databaseSize()
    {
        QFETCH(qint64, bytes);
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        center.setDatabaseSize(bytes);
        QTEST(label(center, "label_record_bytes")->text(), "text");
        QTEST(label(center, "label_record_bytes")->styleSheet(), "colour");
    }

    void recordingTakesThePresentAsStart()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
        center.setRecordState(true);
        const QDateTime start = QDateTime::fromString(center.startTimeText(), timeFormat);
        QVERIFY(start.isValid());
        QVERIFY(start >= before && start <= QDateTime::currentDateTime());
        QCOMPARE(label(center, "label_to")->text(), QStringLiteral("~"));
        for (const char *name : {"label_record_starttime", "label_to", "label_record_endtime"})
            QCOMPARE(label(center, name)->styleSheet(), recording);
        QVERIFY(sameIcon(center.findChild<QPushButton *>(QStringLiteral("btn_record"))->icon(),
                         QStringLiteral(":/img/RecordStopButton.png")));
    }

    void recordingTwiceKeepsTheFirstStart()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        center.setRecordRange(QStringLiteral("2026-01-02 03:04:05"), QString());
        center.setRecordState(true);
        center.setRecordState(true);
        QCOMPARE(center.startTimeText(), QStringLiteral("2026-01-02 03:04:05"));
    }

    void stoppingWritesTheEnd()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        center.setRecordRange(QStringLiteral("2026-01-02 03:04:05"), QString());
        center.setRecordState(true);
        center.setRecordState(false);
        QCOMPARE(center.startTimeText(), QStringLiteral("2026-01-02 03:04:05"));
        QVERIFY(QDateTime::fromString(center.endTimeText(), timeFormat).isValid());
        QVERIFY(label(center, "label_to")->text().isEmpty());
        for (const char *name : {"label_record_starttime", "label_to", "label_record_endtime"})
            QCOMPARE(label(center, name)->styleSheet(), idle);
        QVERIFY(sameIcon(center.findChild<QPushButton *>(QStringLiteral("btn_record"))->icon(),
                         QStringLiteral(":/img/RecordButton.png")));
    }

    void writeTroubleShowsUntilItIsOver()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        QLabel *trouble = label(center, "label_record_error");
        QVERIFY(trouble->isHidden());
        center.setWriteTrouble(QStringLiteral("The disk is <b>full</b>."));
        QVERIFY(!trouble->isHidden());
        QCOMPARE(trouble->text(), QStringLiteral("The disk is <b>full</b>."));
        QCOMPARE(trouble->textFormat(), Qt::PlainText);
        QCOMPARE(trouble->toolTip(), plainToolTip(trouble->text()));
        center.setWriteTrouble({});
        QVERIFY(trouble->isHidden());
    }

    void writeTroubleMovesNothing()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        center.resize(1500, 464);
        center.show();
        const auto places = [&center] {
            QList<QRect> all{center.findChild<QWidget *>(QStringLiteral("btn_record"))->geometry()};
            for (const char *name :
                 {"label_record_starttime", "label_to", "label_record_endtime", "label_record_bytes"})
                all << label(center, name)->geometry();
            return all;
        };
        const QList<QRect> before = places();
        center.setWriteTrouble(QStringLiteral("The disk is full."));
        center.layout()->activate();
        QVERIFY(label(center, "label_record_error")->width() > 100);
        QCOMPARE(places(), before);
        center.setWriteTrouble({});
        center.layout()->activate();
        QCOMPARE(places(), before);
    }

    void keyboardStartsInTheDeviceList()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        center.takeFocus();
        QCOMPARE(center.focusWidget(), center.findChild<QWidget *>(QStringLiteral("list_project")));
    }

    void recordButtonAsksForRecording()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        QSignalSpy clicked(&center, &ProjectCenter::clickRecord);
        QTest::mouseClick(center.findChild<QPushButton *>(QStringLiteral("btn_record")), Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);
    }

    void recordButtonTellsWhatItIsFor()
    {
        const ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        const auto *button = center.findChild<QPushButton *>(QStringLiteral("btn_record"));
        QCOMPARE(button->toolTip(), QStringLiteral("Record current data"));
        QCOMPARE(button->text(), QString());
        QCOMPARE(button->iconSize(), QSize(50, 50));
        QVERIFY(!center.windowIcon().isNull());
        QCOMPARE(center.styleSheet(),
                 QStringLiteral("color: rgb(58, 58, 58);QToolTip { color: rgb(230,230,230); background-color: "
                                "rgb(12, 12, 12); border: #996633; }"));
    }

    void recordBarHasItsSizes()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        center.resize(1010, 464);
        center.show();
        QCOMPARE(center.findChild<QWidget *>(QStringLiteral("bottom_frame"))->height(), 56);
        QCOMPARE(center.findChild<QWidget *>(QStringLiteral("widget_list"))->width(), 200);
        QVERIFY(center.findChild<QWidget *>(QStringLiteral("widget_board"))->minimumWidth() >= 810);
        QVERIFY(center.findChild<QWidget *>(QStringLiteral("widget_board"))->minimumHeight() >= 404);
        QCOMPARE(label(center, "label_record_starttime")->size(), QSize(200, 56));
        QCOMPARE(label(center, "label_record_endtime")->size(), QSize(200, 56));
        QCOMPARE(label(center, "label_record_bytes")->size(), QSize(200, 56));
    }

    void namesTheProjectByItsFile()
    {
        ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
        QCOMPARE(center.findChild<QPushButton *>(QStringLiteral("button_project"))->text(), QStringLiteral("Kitchen"));
    }
};

QTEST_MAIN(tst_ProjectCenter)
#include "tst_ProjectCenter.moc"
