#include "store/Recording.h"
#include "support/LogCapture.h"

#include <QSignalSpy>
#include <QtTest>

/// A recording that somebody deletes, moves or replaces while it is open: where the system allows that, the connection
/// itself would go on writing into a file that nobody finds.
class tst_InsertSerialData_vanishedFile : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_recording = std::make_unique<Recording>();
        m_store = m_recording->open();
        QVERIFY(m_store);
        InsertSerialData::enqueue(row("A1", 1700000000));
        m_store->insertNow();
        m_failed = std::make_unique<QSignalSpy>(m_store.get(), &InsertSerialData::writingFailed);
        m_restored = std::make_unique<QSignalSpy>(m_store.get(), &InsertSerialData::writingRestored);
    }

    void cleanup()
    {
        m_failed.reset();
        m_restored.reset();
        m_store.reset();
        emptyQueue();
    }

    void deletedFileKeepsTheRows()
    {
        QVERIFY(QFile::remove(m_recording->file()));
        const LogCapture log;
        for (quint32 i = 1; i <= 3; ++i) {
            InsertSerialData::enqueue(row("A1", 1700000000 + i));
            m_store->insertNow();
        }
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(InsertSerialData::pendingCount(), 3);
        QCOMPARE(m_failed->count(), 1);
        QCOMPARE(m_failed->first().first().toString(),
                 QString("The recording was deleted, moved or replaced. Readings wait in memory and are stored when "
                         "the project is opened again."));

        m_store.reset();
        QVERIFY(!QFile::exists(m_recording->file()));
        m_store = m_recording->open();
        m_store->insertNow();
        QCOMPARE(m_recording->rows(),
                 QStringList({"A1|21.5|40|1700000001", "A1|21.5|40|1700000002", "A1|21.5|40|1700000003"}));
    }

    void replacedFileIsNotMistakenForTheOpenOne()
    {
        const QString aside = m_recording->file() + QStringLiteral(".bak");
        QVERIFY(QFile::rename(m_recording->file(), aside));
        QVERIFY(QFile::copy(aside, m_recording->file()));
        InsertSerialData::enqueue(row("A1", 1700000001));
        m_store->insertNow();
        QCOMPARE(m_failed->count(), 1);
        QCOMPARE(InsertSerialData::pendingCount(), 1);

        m_store.reset();
        m_store = m_recording->open();
        m_store->insertNow();
        QCOMPARE(m_recording->rows(), QStringList({"A1|21.5|40|1700000000", "A1|21.5|40|1700000001"}));
    }

    void fileThatIsBackIsWrittenAgain()
    {
        const QString aside = m_recording->file() + QStringLiteral(".moved");
        QVERIFY(QFile::rename(m_recording->file(), aside));
        InsertSerialData::enqueue(row("A1", 1700000001));
        m_store->insertNow();
        QCOMPARE(InsertSerialData::pendingCount(), 1);

        QVERIFY(QFile::rename(aside, m_recording->file()));
        m_store->insertNow();
        QCOMPARE(InsertSerialData::pendingCount(), 0);
        QCOMPARE(m_restored->count(), 1);
        QCOMPARE(m_recording->rows(), QStringList({"A1|21.5|40|1700000000", "A1|21.5|40|1700000001"}));
        QCOMPARE(m_recording->integrity(), QString("ok"));
    }

private:
    std::unique_ptr<Recording> m_recording;
    std::unique_ptr<InsertSerialData> m_store;
    std::unique_ptr<QSignalSpy> m_failed;
    std::unique_ptr<QSignalSpy> m_restored;
};

QTEST_GUILESS_MAIN(tst_InsertSerialData_vanishedFile)
#include "tst_InsertSerialData_vanishedFile.moc"
