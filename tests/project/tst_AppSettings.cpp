#include "project/AppSettings.h"
#include "support/WriteObstacles.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <thread>
#include <vector>

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
    void craftedObjectsReadLikeNothing();
    void otherSectionsStayAsTheyAre();
    void anotherStationsProjectsStay();
    void stationsThatAddAtOnceLoseNothing();
    void renamedProjectIsListedOnce();
    void copiedProjectIsListedOnce();
    void systemWideSettingsHold();

private:
    QString makeProject(const QString &name) const;
    QByteArray content() const;
    bool writeStore(const QByteArray &bytes) const;

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
    QVERIFY(!QFile::exists(m_storePath) || QFile::remove(m_storePath));
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

bool tst_AppSettings::writeStore(const QByteArray &bytes) const
{
    QFile file(m_storePath);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
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

void tst_AppSettings::craftedObjectsReadLikeNothing()
{
    // Each would take the memory or the stack from the toolkit's own reader.
    const QByteArray bomb = "\\x40Variant(\\0\\0\\0\\t\\xf\\xff\\xff\\xff)";
    const QByteArray nested = "@Variant(" + QByteArray("\\0\\0\\0\\t\\0\\0\\0\\x1").repeated(100000) + ')';
    const QByteArray before = "[General]\nx=" + bomb + "\n\n[RecentProjects]\nautoLoad=" + bomb + "\nlist=" + bomb +
                              ", a\nother=" + nested + "\nprojects=" + nested + "\n";
    QVERIFY(writeStore(before));
    AppSettings settings;
    settings.load();
    QVERIFY(!settings.autoLoad);
    QCOMPARE(settings.recentProjectList, QStringList({"", "a"}));
    QVERIFY(settings.recentProjects.isEmpty());
    QVERIFY(settings.saveAutoFlags());
    QCOMPARE(content(),
             QByteArray(before).replace("autoLoad=" + bomb, "autoLoad=false\nautoRecord=false\nkeepAlive=false"));
}

void tst_AppSettings::otherSectionsStayAsTheyAre()
{
    const QByteArray foreign = "; by hand\n[Viewer]\nzoom=@Rect(1 2 3 4) ; large\nwords\n[\n=\n";
    QVERIFY(writeStore(foreign));
    AppSettings settings;
    settings.addRecentProject("a", makeProject("a"));
    QVERIFY2(content().startsWith(foreign), content().constData());
    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, QStringList("a"));
}

void tst_AppSettings::anotherStationsProjectsStay()
{
    AppSettings first;
    AppSettings second;
    QVERIFY(first.addRecentProject("old", makeProject("old")));
    first.load();
    second.load();
    QVERIFY(first.addRecentProject("a", makeProject("a")));
    QVERIFY(first.addRecentProject("b", makeProject("b")));
    QVERIFY(second.addRecentProject("c", makeProject("c")));
    QCOMPARE(second.recentProjectList, QStringList({"c", "b", "a", "old"}));
    QCOMPARE(second.recentProjects.value("b").toString(), m_projects->filePath("b.tpc"));

    // Both had the same one opened: it is listed once, where it came first.
    QVERIFY(first.addRecentProject("c", makeProject("elsewhere")));
    QCOMPARE(first.recentProjectList, QStringList({"c", "b", "a", "old"}));
    QCOMPARE(first.recentProjects.value("c").toString(), m_projects->filePath("c.tpc"));
    AppSettings next;
    next.load();
    QCOMPARE(next.recentProjectList, first.recentProjectList);
    QCOMPARE(next.recentProjects, first.recentProjects);
}

void tst_AppSettings::stationsThatAddAtOnceLoseNothing()
{
    constexpr int stations = 2;
    constexpr int projects = 10;
    std::vector<std::thread> threads;
    for (int station = 0; station < stations; ++station) {
        QStringList paths;
        for (int i = 0; i < projects; ++i)
            paths += makeProject(QStringLiteral("%1-%2").arg(station).arg(i));
        threads.emplace_back([paths] {
            AppSettings settings;
            for (const QString &path : paths)
                settings.addRecentProject(QFileInfo(path).baseName(), path);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    AppSettings settings;
    settings.load();
    QCOMPARE(settings.recentProjectList.size(), stations * projects);
    QCOMPARE(settings.recentProjects.size(), stations * projects);
}

/// Its list of devices is confirmed under the name that it was created with.
void tst_AppSettings::renamedProjectIsListedOnce()
{
    AppSettings settings;
    const QString path = makeProject("Cellar");
    QVERIFY(settings.addRecentProject("Cellar", path));
    QVERIFY(settings.addRecentProject("Kitchen", path));
    QCOMPARE(settings.recentProjectList, QStringList("Cellar"));
    QCOMPARE(settings.recentProjects.keys(), QStringList("Cellar"));
}

void tst_AppSettings::copiedProjectIsListedOnce()
{
    AppSettings settings;
    QVERIFY(settings.addRecentProject("Kitchen", makeProject("Kitchen")));
    const QString copy = makeProject("Copy");
    QVERIFY(settings.addRecentProject("Copy", copy));
    QVERIFY(settings.addRecentProject("Kitchen", copy));
    const QString link = m_projects->filePath("Link.tpc");
    QVERIFY(QFile::link(copy, link));
    QVERIFY(settings.addRecentProject("Link", link));
    QCOMPARE(settings.recentProjectList, QStringList({"Copy", "Kitchen"}));
}

void tst_AppSettings::systemWideSettingsHold()
{
    const QTemporaryDir system;
    const QByteArray dirs = qgetenv("XDG_CONFIG_DIRS");
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(system.path()));
    QVERIFY(QDir(system.path()).mkdir("SorvantoLite"));
    QFile file(system.filePath("SorvantoLite/Sorvanto Lite.conf"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[RecentProjects]\nautoLoad=true\nkeepAlive=true\n");
    file.close();
    QVERIFY(writeStore("[RecentProjects]\nkeepAlive=false\n"));
    AppSettings settings;
    settings.load();
    qputenv("XDG_CONFIG_DIRS", dirs);
    QVERIFY(settings.autoLoad);
    QVERIFY(!settings.keepAlive);
}

QTEST_GUILESS_MAIN(tst_AppSettings)
#include "tst_AppSettings.moc"
