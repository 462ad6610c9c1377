#include "store/Recording.h"

#include <QtTest>

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

/// What a program has queued and held is there however soon it is killed: no disk has had the time to be written.
class tst_KilledStore : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_recording = std::make_unique<Recording>(); }
    void cleanup();

    void queuedRowsAreThere();
    void rowsQueuedBeforeTheOpeningAreThere();
    void committedRowsAreThereOnce_data();
    void committedRowsAreThereOnce();
    void equalReadingOfALaterBatchIsKept();
    void killedWhileTakingIn();
    void heldRowsAreThereAsTheyStood();
    void heldRowsGiveWay();
    void heldRowsOutliveABatch();
    void rowsOfASpoolThatCannotBeWritten();

private:
    bool isKilledAfter(const std::function<bool()> &work) const;
    QStringList rowsAfterwards() const;

    std::unique_ptr<Recording> m_recording;
    std::unique_ptr<InsertSerialData> m_store; ///< the other program's
};

void tst_KilledStore::cleanup()
{
    m_recording.reset();
    emptyQueue();
}

/// Another program does the work, and is killed at once; false when it could not.
bool tst_KilledStore::isKilledAfter(const std::function<bool()> &work) const
{
    const pid_t program = ::fork();
    if (program == 0) {
        if (work())
            ::raise(SIGKILL);
        ::_exit(1);
    }
    int status = 0;
    return ::waitpid(program, &status, 0) == program && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

QStringList tst_KilledStore::rowsAfterwards() const
{
    const auto store = m_recording->open();
    if (!store)
        return {};
    store->insertNow();
    return m_recording->rows();
}

void tst_KilledStore::queuedRowsAreThere()
{
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        InsertSerialData::enqueue(row("A1", 1700000000));
        InsertSerialData::enqueue(row("B2", 1700000000, noValue, 3));
        return m_store != nullptr;
    }));
    const auto store = m_recording->open();
    QCOMPARE(store->openingReport().rowsReplayed, 2);
    // They are on the disk soon, too.
    QTRY_COMPARE(m_recording->spooledRows().size(), 2);
    store->insertNow();
    QCOMPARE(m_recording->rows(), QStringList({"A1|21.5|40|1700000000", "B2|NULL|3|1700000000"}));
}

void tst_KilledStore::rowsQueuedBeforeTheOpeningAreThere()
{
    QVERIFY(isKilledAfter([this] {
        InsertSerialData::enqueue(row("A1", 1700000000));
        return (m_store = m_recording->open()) != nullptr;
    }));
    QCOMPARE(rowsAfterwards(), QStringList("A1|21.5|40|1700000000"));
}

void tst_KilledStore::committedRowsAreThereOnce_data()
{
    QTest::addColumn<bool>("isLarge");
    QTest::newRow("new recording") << false;
    QTest::newRow("large recording") << true;
}

void tst_KilledStore::committedRowsAreThereOnce()
{
    QFETCH(bool, isLarge);
    QVERIFY(!isLarge || m_recording->outgrowFirstPage());
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        for (quint32 i = 0; i < 4; ++i) {
            InsertSerialData::enqueue(row("A1", 1700000000 + i));
            if (i % 2 == 0)
                m_store->insertNow();
        }
        return true;
    }));
    QCOMPARE(rowsAfterwards().filter("A1"), QStringList({"A1|21.5|40|1700000000", "A1|21.5|40|1700000001",
                                                         "A1|21.5|40|1700000002", "A1|21.5|40|1700000003"}));
}

/// A logger asked twice in a second may well answer the same.
void tst_KilledStore::equalReadingOfALaterBatchIsKept()
{
    QVERIFY(m_recording->outgrowFirstPage());
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        InsertSerialData::enqueue(row("A1", 1700000000));
        m_store->insertNow();
        InsertSerialData::enqueue(row("A1", 1700000000));
        return true;
    }));
    QCOMPARE(rowsAfterwards().filter("A1").size(), 2);
}

void tst_KilledStore::killedWhileTakingIn()
{
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        InsertSerialData::enqueue(row("A1", 1700000000));
        InsertSerialData::enqueue(row("A1", 1700000001));
        return true;
    }));
    // Before the batch, after it, and after the rows have reached the spool.
    QVERIFY(isKilledAfter([this] { return (m_store = m_recording->open()) != nullptr; }));
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        return QTest::qWaitFor([this] { return m_recording->spooledRows().size() == 2; });
    }));
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        m_store->insertNow();
        return true;
    }));
    QCOMPARE(rowsAfterwards(), QStringList({"A1|21.5|40|1700000000", "A1|21.5|40|1700000001"}));
}

void tst_KilledStore::heldRowsAreThereAsTheyStood()
{
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        InsertSerialData::enqueue(row("B2", 1700000000));
        const auto held = InsertSerialData::enqueue({}, {}, {row("A1", 1700000000)});
        InsertSerialData::enqueue({}, held, {row("A1", 1700000000), row("A1", 1700000001)});
        return true;
    }));
    QCOMPARE(rowsAfterwards(),
             QStringList({"A1|21.5|40|1700000000", "B2|21.5|40|1700000000", "A1|21.5|40|1700000001"}));
}

void tst_KilledStore::heldRowsGiveWay()
{
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        const auto held = InsertSerialData::enqueue({}, {}, {row("A1", 1700000000), row("A1", 1700000001)});
        return InsertSerialData::enqueue({row("A1", 1700000005)}, held, {}).empty();
    }));
    QCOMPARE(rowsAfterwards(), QStringList("A1|21.5|40|1700000005"));
}

void tst_KilledStore::heldRowsOutliveABatch()
{
    QVERIFY(m_recording->outgrowFirstPage());
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        InsertSerialData::enqueue(row("B2", 1700000000));
        InsertSerialData::enqueue({}, {}, {row("A1", 1700000000)});
        InsertSerialData::enqueue(row("B2", 1700000001));
        m_store->insertNow();
        return true;
    }));
    QCOMPARE(rowsAfterwards().mid(Recording::firstRows),
             QStringList({"A1|21.5|40|1700000000", "B2|21.5|40|1700000000", "B2|21.5|40|1700000001"}));
}

void tst_KilledStore::rowsOfASpoolThatCannotBeWritten()
{
    QVERIFY(QDir(m_recording->folder()).mkdir("Kitchen.dat.spool"));
    QVERIFY(isKilledAfter([this] {
        m_store = m_recording->open();
        for (quint32 i = 0; i < 5000; ++i)
            InsertSerialData::enqueue(row("A1", 1700000000 + i));
        return true;
    }));
    QCOMPARE(rowsAfterwards().size(), 5000);
}

QTEST_GUILESS_MAIN(tst_KilledStore)
#include "tst_KilledStore.moc"
