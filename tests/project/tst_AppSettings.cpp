#include "project/AppSettings.h"
#include "support/WriteObstacles.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

class tst_AppSettings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void emptyStoreGivesDefaults();
    void savesInOneGroup();
    void everythingIsThereAtTheNextStart();
    void flagsAreSavedAlone();
    void acceptsAHash();
    void hostileValuesGiveDefaults();
    void deletedProjectDisappearsAtTheNextStart();
    void pruningIsNotWrittenBack();
    void prunesTheFirstOccurrenceOnly();
    void newProjectComesFirst();
    void listedProjectStaysWhereItIs();
    void secondProjectOfTheSameNameIsNotAdded();
    void nameWithoutPathIsNotAdded();
    void addingPrunes();
    void listHasNoLimit();
    void autoLoadPath_data();
    void autoLoadPath();
    void fullDiskLeavesTheOldSettings();

private:
    QString makeProject(const QString &name) const;
    QByteArray content() const;

    QTemporaryDir m_folder;
    std::unique_ptr<QTemporaryDir> m_projects;
    QString m_storePath;
};

void tst_AppSettings::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder.path());
    m_storePath = QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite")).fileName();
    QVERIFY2(m_storePath.startsWith(m_folder.path()), qPrintable(m_storePath));
}

void tst_AppSettings::init()
{
    m_projects = std::make_unique<QTemporaryDir>();
    QSettings store(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite"));
    store.clear();
    store.sync();
    QCOMPARE(store.status(), QSettings::NoError);
}

/// The path of a new project file.
QString tst_AppSettings::makeProject(const QString &name) const
{
    const QString path = m_projects->filePath(name + QStringLiteral(".tpc"));
    QFile file(path);
    return file.open(QIODevice::WriteOnly) ? path : QString();
}

QByteArray tst_AppSettings::content() const
{
    QFile file(m_storePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_AppSettings::emptyStoreGivesDefaults()
{
    AppSettings settings;
    settings.autoLoad = settings.autoRecord = settings.keepAlive = true;
    settings.recentProjectList = QStringList("old");
    settings.recentProjects.insert("old", "/old");
    settings.load();
    QVERIFY(settings.recentProjectList.isEmpty());
    QVERIFY(settings.recentProjects.isEmpty());
    QVERIFY(!settings.autoLoad && !settings.autoRecord && !settings.keepAlive);
}

void tst_AppSettings::savesInOneGroup()
{
    AppSettings settings;
    settings.recentProjectList = QStringList{"b", "a"};
    settings.autoRecord = true;
    QVERIFY(settings.save());
    QCOMPARE(content(), QByteArray("[RecentProjects]\nautoLoad=false\nautoRecord=true\nkeepAlive=false\n"
                                   "list=b, a\nprojects=@Variant(\\0\\0\\0\\b\\0\\0\\0\\0)\n"));
}

void tst_AppSettings::everythingIsThereAtTheNextStart()
{
    AppSettings settings;
    settings.recentProjectList = QStringList{QStringLiteral("K\u00FChlraum"), "a, b"};
    settings.recentProjects.insert(QStringLiteral("K\u00FChlraum"), QStringLiteral("/p/K\u00FChlraum \u2013.tpc"));
    settings.recentProjects.insert("a, b", "/p/a, b.tpc");
    settings.autoLoad = settings.autoRecord = settings.keepAlive = true;
    QVERIFY(settings.save());

    // Read as another process would: from a file that this one has not opened yet.
    const QString copy = m_projects->filePath(QStringLiteral("copy"));
    QVERIFY(QFile::copy(m_storePath, copy));
    const QSettings other(copy, QSettings::IniFormat);
    QCOMPARE(other.value("RecentProjects/list").toStringList(), settings.recentProjectList);
    QCOMPARE(other.value("RecentProjects/projects").toMap(), settings.recentProjects);

    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, settings.recentProjectList);
    QCOMPARE(next.recentProjects, settings.recentProjects);
    QVERIFY(next.autoLoad && next.autoRecord && next.keepAlive);
}

void tst_AppSettings::flagsAreSavedAlone()
{
    AppSettings settings;
    settings.recentProjectList = QStringList("a");
    QVERIFY(settings.save());
    settings.recentProjectList = QStringList("b");
    settings.autoRecord = true;
    QVERIFY(settings.saveAutoFlags());

    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, QStringList("a"));
    QVERIFY(next.autoRecord);
    QVERIFY(!next.autoLoad && !next.keepAlive);
}

void tst_AppSettings::acceptsAHash()
{
    QSettings store(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite"));
    store.setValue("RecentProjects/projects", QVariantHash{{"a", "/a.tpc"}, {"b", "/b.tpc"}});
    store.sync();
    AppSettings settings;
    settings.load();
    QCOMPARE(settings.recentProjects, QVariantMap({{"a", "/a.tpc"}, {"b", "/b.tpc"}}));
}

void tst_AppSettings::hostileValuesGiveDefaults()
{
    QSettings store(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite"));
    store.setValue("RecentProjects/projects", "none");
    store.setValue("RecentProjects/list", QVariantMap{{"a", 1}});
    store.setValue("RecentProjects/autoLoad", QVariantMap());
    store.setValue("RecentProjects/keepAlive", QByteArray());
    store.sync();
    AppSettings settings;
    settings.load();
    QVERIFY(settings.recentProjects.isEmpty());
    QVERIFY(settings.recentProjectList.isEmpty());
    QVERIFY(!settings.autoLoad && !settings.keepAlive);
    QCOMPARE(settings.autoLoadPath(), QString());
}

void tst_AppSettings::deletedProjectDisappearsAtTheNextStart()
{
    AppSettings settings;
    const QString a = makeProject("a");
    settings.addRecentProject("a", a);
    settings.addRecentProject("b", makeProject("b"));
    QVERIFY(QFile::remove(a));

    AppSettings next;
    next.load();
    next.pruneRecentProjects();
    QCOMPARE(next.recentProjectList, QStringList("b"));
    QCOMPARE(next.recentProjects.keys(), QStringList("b"));
}

void tst_AppSettings::pruningIsNotWrittenBack()
{
    AppSettings settings;
    const QString a = makeProject("a");
    settings.addRecentProject("a", a);
    QVERIFY(QFile::remove(a));
    settings.pruneRecentProjects();
    QVERIFY(settings.recentProjectList.isEmpty());
    QVERIFY(settings.saveAutoFlags());

    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, QStringList("a"));
    QVERIFY(settings.save());
    next.load();
    QVERIFY(next.recentProjectList.isEmpty());
}

void tst_AppSettings::prunesTheFirstOccurrenceOnly()
{
    AppSettings settings;
    settings.recentProjectList = QStringList{"gone", "unmapped", "gone"};
    settings.recentProjects.insert("gone", m_projects->filePath("gone.tpc"));
    settings.pruneRecentProjects();
    QCOMPARE(settings.recentProjectList, QStringList({"unmapped", "gone"}));
    QVERIFY(settings.recentProjects.isEmpty());
}

void tst_AppSettings::newProjectComesFirst()
{
    AppSettings settings;
    settings.addRecentProject("a", makeProject("a"));
    settings.addRecentProject("b", makeProject("b"));
    QCOMPARE(settings.recentProjectList, QStringList({"b", "a"}));
    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, QStringList({"b", "a"}));
    QCOMPARE(next.recentProjects.value("a").toString(), m_projects->filePath("a.tpc"));
}

void tst_AppSettings::listedProjectStaysWhereItIs()
{
    AppSettings settings;
    settings.addRecentProject("a", makeProject("a"));
    settings.addRecentProject("b", makeProject("b"));
    settings.addRecentProject("a", makeProject("a"));
    QCOMPARE(settings.recentProjectList, QStringList({"b", "a"}));
}

void tst_AppSettings::secondProjectOfTheSameNameIsNotAdded()
{
    AppSettings settings;
    settings.addRecentProject("a", makeProject("a"));
    settings.addRecentProject("a", makeProject("elsewhere"));
    QCOMPARE(settings.recentProjectList, QStringList("a"));
    QCOMPARE(settings.recentProjects.value("a").toString(), m_projects->filePath("a.tpc"));
}

void tst_AppSettings::nameWithoutPathIsNotAdded()
{
    AppSettings settings;
    settings.recentProjectList = QStringList("a");
    settings.addRecentProject("a", makeProject("a"));
    QCOMPARE(settings.recentProjectList, QStringList("a"));
    QVERIFY(settings.recentProjects.isEmpty());
}

void tst_AppSettings::addingPrunes()
{
    AppSettings settings;
    const QString a = makeProject("a");
    settings.addRecentProject("a", a);
    QVERIFY(QFile::remove(a));
    settings.addRecentProject("b", makeProject("b"));
    settings.addRecentProject("never made", m_projects->filePath("never made.tpc"));
    QCOMPARE(settings.recentProjectList, QStringList("b"));
    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, QStringList("b"));
}

void tst_AppSettings::listHasNoLimit()
{
    AppSettings settings;
    for (int i = 0; i < 100; ++i)
        settings.addRecentProject(QString::number(i), makeProject(QString::number(i)));
    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList.size(), 100);
    QCOMPARE(next.recentProjects.size(), 100);
    QCOMPARE(next.recentProjectList.first(), QStringLiteral("99"));
}

void tst_AppSettings::autoLoadPath_data()
{
    QTest::addColumn<bool>("autoLoad");
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QVariantMap>("map");
    QTest::addColumn<QString>("path");
    const QVariantMap both{{"a", "/a.tpc"}, {"b", "/b.tpc"}};
    QTest::newRow("on") << true << QStringList{"b", "a"} << both << "/b.tpc";
    QTest::newRow("off") << false << QStringList{"b", "a"} << both << "";
    QTest::newRow("empty list") << true << QStringList() << both << "";
    QTest::newRow("empty map") << true << QStringList{"a"} << QVariantMap() << "";
    QTest::newRow("first without path") << true << QStringList{"c", "a"} << both << "";
}

void tst_AppSettings::autoLoadPath()
{
    QFETCH(bool, autoLoad);
    QFETCH(QStringList, list);
    QFETCH(QVariantMap, map);
    QFETCH(QString, path);
    AppSettings settings;
    settings.autoLoad = autoLoad;
    settings.recentProjectList = list;
    settings.recentProjects = map;
    QCOMPARE(settings.autoLoadPath(), path);
}

void tst_AppSettings::fullDiskLeavesTheOldSettings()
{
    AppSettings settings;
    settings.recentProjectList = QStringList("a");
    QVERIFY(settings.save());
    const QByteArray before = content();
    settings.recentProjectList = QStringList(QString(3000, QLatin1Char('x')));
    {
        const FullDisk full(2048);
        QVERIFY(!settings.save());
    }
    QCOMPARE(content(), before);
    QVERIFY(settings.saveAutoFlags());
    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, QStringList("a"));
    QVERIFY(settings.save());
    next.load();
    QCOMPARE(next.recentProjectList, settings.recentProjectList);
}

QTEST_GUILESS_MAIN(tst_AppSettings)
#include "tst_AppSettings.moc"
