#include "LoggerNetwork.h"
#include "Operator.h"
#include "UsbBench.h"

#include "support/LogCapture.h"

#include <QAbstractItemModel>
#include <QTimer>

namespace {

QStringList keysListed(const SorvantoMain &station)
{
    const auto *list = child<QListWidget>(*shownScreen<ProjectManager>(station), "availlable_list");
    QStringList keys;
    for (int i = 0; i < list->count(); ++i)
        keys << list->item(i)->data(Qt::ToolTipRole).toString();
    return keys;
}

} // namespace

/// What the device manager lists as found while loggers answer the search, come and go.
class tst_ManagerSearch : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_answerer = std::make_unique<Answerer>();
        m_op = std::make_unique<Operator>();
    }
    void cleanup()
    {
        m_op.reset();
        m_answerer.reset();
    }

    void aNewProjectSearchesTheNetwork();
    void editingSearchesAgain();
    void theRefreshButtonSearchesAgain();
    void aConfirmedProjectSearchesNoMore();
    void foundLoggersJoinTheProject();
    void aBurstOfAnswersMakesOneList();
    void usbLoggersComeAndGo();

private:
    QListWidget *list() const { return child<QListWidget>(*m_op->manager(), "availlable_list"); }
    void answer(int number)
    {
        m_answerer->answer(discoveryReply(firstMac + quint64(number), QStringLiteral("10.77.0.2")));
    }

    static constexpr quint64 firstMac = 0x020000000001;
    std::unique_ptr<Answerer> m_answerer;
    std::unique_ptr<Operator> m_op;
};

void tst_ManagerSearch::aNewProjectSearchesTheNetwork()
{
    m_op->createProject();
    QVERIFY(m_answerer->hear().isValid());
    QVERIFY(keysListed(*m_op->station).isEmpty());
    answer(0);
    QTRY_COMPARE(rowTexts(*list()), QStringList{QStringLiteral("020000000001\t[10.77.0.2:23]")});
}

void tst_ManagerSearch::editingSearchesAgain()
{
    QVERIFY(m_op->openProject(1));
    m_op->edit();
    QVERIFY(m_answerer->hear().isValid());
    answer(0);
    QTRY_COMPARE(list()->count(), 1);
}

void tst_ManagerSearch::theRefreshButtonSearchesAgain()
{
    m_op->createProject();
    QVERIFY(m_answerer->hear().isValid());
    answer(0);
    QTRY_COMPARE(list()->count(), 1);
    list()->item(0)->setSelected(true);
    child<QPushButton>(*m_op->manager(), "pushButton_refresh")->click();
    QVERIFY(m_answerer->hear().isValid());
    answer(1);
    QTRY_COMPARE(list()->count(), 2);
    QVERIFY(list()->item(0)->isSelected());
}

void tst_ManagerSearch::aConfirmedProjectSearchesNoMore()
{
    m_op->createProject();
    m_op->addByHand();
    QVERIFY(!m_op->station->findChildren<QUdpSocket *>().isEmpty());
    m_op->confirm();
    QTRY_VERIFY(m_op->station->findChildren<QUdpSocket *>().isEmpty());
}

void tst_ManagerSearch::foundLoggersJoinTheProject()
{
    m_op->createProject();
    QVERIFY(m_answerer->hear().isValid());
    for (int i = 0; i < 3; ++i)
        answer(i);
    QTRY_COMPARE(list()->count(), 3);
    child<QTabWidget>(*m_op->manager(), "tabWidget")->setCurrentIndex(1);
    list()->item(0)->setSelected(true);
    list()->item(2)->setSelected(true);
    child<QPushButton>(*m_op->manager(), "btn_add")->click();
    m_op->confirm();
    const QList<ConfiguredDevice *> devices = m_op->station->configuredDevices();
    QCOMPARE(devices.size(), 2);
    QCOMPARE(devices.at(1)->serialNumber(), QStringLiteral("020000000003"));
    QCOMPARE(devices.at(1)->address(), QStringLiteral("10.77.0.2"));
    QCOMPARE(devices.at(1)->ch2Name(), QStringLiteral("CH2"));
    QCOMPARE(devices.at(1)->dashboardNumber(), 1);
    QCOMPARE(m_op->projectFile().readDevices()->size(), 2);
}

void tst_ManagerSearch::aBurstOfAnswersMakesOneList()
{
    constexpr int burst = 150;
    m_op->createProject();
    QVERIFY(m_answerer->hear().isValid());
    const LogCapture log;
    int turns = 0; // of the event loop in which the list grows
    bool hasGrown = false;
    const QObject watch;
    connect(list()->model(), &QAbstractItemModel::rowsInserted, &watch, [&] {
        if (std::exchange(hasGrown, true))
            return;
        ++turns;
        QTimer::singleShot(0, &watch, [&hasGrown] { hasGrown = false; });
    });
    for (int i = 0; i < burst; ++i)
        answer(i);
    QTRY_COMPARE(list()->count(), burst);
    QVERIFY(log.count(QStringLiteral("SorvantoMain::readPendingDatagrams()")) > 1);
    QCOMPARE(turns, 1);
}

void tst_ManagerSearch::usbLoggersComeAndGo()
{
    UsbBench bench;
    bench.plugIn(1);
    bench.open({1});
    bench.station().slotStopRecord();
    bench.station().slotAddDeviceProject();
    QVERIFY(keysListed(bench.station()).isEmpty());
    bench.plugIn(2);
    bench.scan();
    QCOMPARE(keysListed(bench.station()), QStringList{UsbBench::key(2)});
    QVERIFY(!bench.isOpen(1));
    bench.pullOut(2);
    bench.scan();
    QVERIFY(keysListed(bench.station()).isEmpty());
    bench.pullOut(1);
    bench.scan();
    bench.plugIn(2);
    bench.plugIn(1);
    bench.scan();
    QCOMPARE(keysListed(bench.station()), QStringList{UsbBench::key(2)});
    child<QPushButton>(*shownScreen<ProjectManager>(bench.station()), "btn_confirm")->click();
    QTRY_VERIFY(bench.isOpen(1));
    QVERIFY(bench.answers(1));
}

STATION_TEST_MAIN(tst_ManagerSearch)
#include "tst_ManagerSearch.moc"
