#include "DiskModel.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using watch::Operation;
using watch::OperationRecord;

/// What is left of a folder when the power is cut.
class tst_DiskModel : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void syncedStays();
    void unsyncedIsTornAtSectors();
    void aSyncCoversWhatCameBeforeItBegan();
    void newFileIsThereOnceItIsSynced();
    void renamingsGetLostInTheirOrder();
    void truncationIsUnsynced();

private:
    void log(Operation operation, quint64 file, qint64 offset = 0, const QByteArray &text = {});
    void open(Operation operation, quint64 file, const QString &name);
    void sync(quint64 file);
    QByteArray path(const QString &name) const { return m_folder->filePath(name).toLocal8Bit(); }
    /// All that may be left, if the power is cut often enough.
    QList<DiskModel::Content> outcomes();

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_log;
};

void tst_DiskModel::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_log.clear();
    QFile file(m_folder->filePath(QStringLiteral("a")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("old");
}

void tst_DiskModel::log(Operation operation, quint64 file, qint64 offset, const QByteArray &text)
{
    const OperationRecord record{operation, quint32(text.size()), file, offset, 0};
    m_log += QByteArray(reinterpret_cast<const char *>(&record), int(sizeof(record))) + text;
}

void tst_DiskModel::open(Operation operation, quint64 file, const QString &name)
{
    log(operation, file, 0, path(name));
}

void tst_DiskModel::sync(quint64 file)
{
    log(Operation::SyncBegin, file);
    log(Operation::SyncEnd, file);
}

QList<DiskModel::Content> tst_DiskModel::outcomes()
{
    constexpr int cuts = 400;
    QRandomGenerator random(1);
    DiskModel model(m_folder->path());
    model.play(m_log);
    QList<DiskModel::Content> contents;
    for (int i = 0; i < cuts; ++i) {
        const DiskModel::Content content = model.afterCut(random);
        if (!contents.contains(content))
            contents.append(content);
    }
    return contents;
}

void tst_DiskModel::syncedStays()
{
    open(Operation::Open, 7, QStringLiteral("a"));
    log(Operation::Write, 7, 3, " and new");
    sync(7);
    QCOMPARE(outcomes(), (QList<DiskModel::Content>{{{QStringLiteral("a"), "old and new"}}}));
}

void tst_DiskModel::unsyncedIsTornAtSectors()
{
    open(Operation::Open, 7, QStringLiteral("a"));
    log(Operation::Write, 7, 0, QByteArray(512, 'x') + QByteArray(512, 'y'));
    QSet<QByteArray> left;
    for (const DiskModel::Content &content : outcomes())
        left.insert(content.value(QStringLiteral("a")));
    const QByteArray zeros(509, '\0');
    QCOMPARE(left, (QSet<QByteArray>{"old", QByteArray(512, 'x'), QByteArray(512, 'x') + QByteArray(512, 'y'),
                                     "old" + zeros + QByteArray(512, 'y')}));
}

void tst_DiskModel::aSyncCoversWhatCameBeforeItBegan()
{
    open(Operation::Open, 7, QStringLiteral("a"));
    log(Operation::Write, 7, 0, "one");
    log(Operation::SyncBegin, 7);
    log(Operation::Write, 7, 0, "two");
    QCOMPARE(outcomes().size(), 3);
    log(Operation::SyncEnd, 7);
    QCOMPARE(outcomes().size(), 2);
}

void tst_DiskModel::newFileIsThereOnceItIsSynced()
{
    open(Operation::Create, 8, QStringLiteral("b"));
    log(Operation::Write, 8, 0, "b");
    QCOMPARE(outcomes().size(), 3); // none, an empty one, one with content
    sync(8);
    QCOMPARE(outcomes(), (QList<DiskModel::Content>{{{QStringLiteral("a"), "old"}, {QStringLiteral("b"), "b"}}}));
}

void tst_DiskModel::renamingsGetLostInTheirOrder()
{
    log(Operation::Rename, 0, 0, path(QStringLiteral("a")) + '\0' + path(QStringLiteral("b")));
    log(Operation::Rename, 0, 0, path(QStringLiteral("b")) + '\0' + path(QStringLiteral("c")));
    QSet<QString> names;
    for (const DiskModel::Content &content : outcomes()) {
        QCOMPARE(content.size(), 1);
        names.insert(content.firstKey());
    }
    QCOMPARE(names.size(), 3);
    sync(0);
    QCOMPARE(outcomes().size(), 1);
    QCOMPARE(outcomes().first().firstKey(), QStringLiteral("c"));
}

void tst_DiskModel::truncationIsUnsynced()
{
    open(Operation::Open, 7, QStringLiteral("a"));
    log(Operation::Truncate, 7, 1);
    QCOMPARE(outcomes().size(), 2);
    sync(7);
    QCOMPARE(outcomes(), (QList<DiskModel::Content>{{{QStringLiteral("a"), "o"}}}));
}

QTEST_GUILESS_MAIN(tst_DiskModel)
#include "tst_DiskModel.moc"
