#include "project/ProjectFile.h"
#include "support/WriteObstacles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void createWritesTheFirstKeys();
    void createLeavesNothingOfAnEarlierProject();
    void storedNameMayDifferFromTheFileName();
    void fileWithoutIntervalReadsZero();
    void intervalBeyondAnIntReadsZero();
    void fileWithoutDatabaseNameGivesTheFolder();
    void recordingIsAFileBesideTheProject_data();
    void recordingIsAFileBesideTheProject();
    void keepsTheLayout_data();
    void keepsTheLayout();
    void backupIsTheListBefore();
    void namesSurviveInTheFile();
    void byteArraysAreStoredWithoutACodec();
    void keepsRecordTimes();
    void keepsOtherKeys();
    void missingListIsNothing_data();
    void missingListIsNothing();
    void hostileValuesDoNoHarm();
    void craftedObjectsReadLikeNothing_data();
    void craftedObjectsReadLikeNothing();
    void whatOpensCanBeSaved_data();
    void whatOpensCanBeSaved();
    void largerFilesAreNoProjects();
    void replacesTheFileWhole();
    void linkAndPermissionsStay();
    void readsWhatWasJustWritten();
    void fullDiskLeavesTheOldFile();
    void fullDiskAtCreation();
    void fileDeletedBehindOurBack();
    void folderDeletedBehindOurBack();
    void readOnlyFolder();

private:
    QByteArray content() const;
    QVariant stored(const QString &key) const;
    void writeContent(const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

namespace {

QList<DeviceEntry> devices(int count, const QString &name = QStringLiteral("hall"))
{
    QList<DeviceEntry> list;
    for (int i = 0; i < count; ++i) {
        DeviceEntry entry;
        entry.name = name;
        entry.serialNumber = QString::number(i);
        list << entry;
    }
    return list;
}

/// Larger than the lock file that guards a save, smaller than a file with a list of twenty devices.
constexpr rlim_t nearlyNothing = 2048;

} // namespace

void tst_ProjectFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_path = m_folder->filePath(QStringLiteral("Kitchen.tpc"));
}

QByteArray tst_ProjectFile::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What another program finds in the file: read through a path that this one has never used.
QVariant tst_ProjectFile::stored(const QString &key) const
{
    static int copies = 0;
    QTemporaryDir elsewhere;
    const QString copy = elsewhere.filePath(QString::number(++copies));
    QFile::copy(m_path, copy);
    return QSettings(copy, QSettings::IniFormat).value(key);
}

void tst_ProjectFile::writeContent(const QByteArray &bytes) const
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void tst_ProjectFile::createWritesTheFirstKeys()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 5000));
    QCOMPARE(content(), QByteArray("[General]\nDataInterval=5000\ndatabaseName=Kitchen.dat\nprojectName=Kitchen\n"));
    QCOMPARE(project.path(), m_path);
    QCOMPARE(project.projectName(), QStringLiteral("Kitchen"));
    QCOMPARE(project.dataInterval(), 5000);
    QCOMPARE(project.databasePath(), m_folder->path() + QStringLiteral("/Kitchen.dat"));
}

void tst_ProjectFile::createLeavesNothingOfAnEarlierProject()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Old"), 5000));
    QVERIFY(project.saveDevices(devices(2)));
    QVERIFY(project.create(QStringLiteral("Kitchen"), 1000));
    QCOMPARE(content(), QByteArray("[General]\nDataInterval=1000\ndatabaseName=Kitchen.dat\nprojectName=Kitchen\n"));

    // The start screen empties the file before it is created anew.
    QVERIFY(project.saveDevices(devices(2)));
    writeContent({});
    QVERIFY(project.create(QStringLiteral("Kitchen"), 1000));
    QCOMPARE(content(), QByteArray("[General]\nDataInterval=1000\ndatabaseName=Kitchen.dat\nprojectName=Kitchen\n"));
}

void tst_ProjectFile::storedNameMayDifferFromTheFileName()
{
    writeContent("[General]\nprojectName=Cellar\ndatabaseName=old.dat\n");
    const ProjectFile project(m_path);
    QCOMPARE(project.projectName(), QStringLiteral("Cellar"));
    QCOMPARE(project.databasePath(), m_folder->path() + QStringLiteral("/old.dat"));
}

void tst_ProjectFile::fileWithoutIntervalReadsZero()
{
    writeContent("[General]\nprojectName=Cellar\n");
    QCOMPARE(ProjectFile(m_path).dataInterval(), 0);
}

void tst_ProjectFile::intervalBeyondAnIntReadsZero()
{
    writeContent("[General]\nDataInterval=4294968296\n"); // 1000 in its lower 32 bits
    QCOMPARE(ProjectFile(m_path).dataInterval(), 0);
}

void tst_ProjectFile::fileWithoutDatabaseNameGivesTheFolder()
{
    writeContent("[General]\nprojectName=Cellar\n");
    QCOMPARE(ProjectFile(m_path).databasePath(), m_folder->path() + QLatin1Char('/'));
}

void tst_ProjectFile::recordingIsAFileBesideTheProject_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("problem");
    QTest::newRow("a file") << QByteArray("Kitchen.dat") << "";
    QTest::newRow("a file with points") << QByteArray("..Kitchen..dat.") << "";
    QTest::newRow("a hidden file") << QByteArray(".dat") << "";
    QTest::newRow("none") << QByteArray() << "";
    QTest::newRow("elsewhere") << QByteArray("../../other.db") << "is a path";
    QTest::newRow("below") << QByteArray("sub/other.db") << "is a path";
    QTest::newRow("here, as a path") << QByteArray("./Kitchen.dat") << "is a path";
    QTest::newRow("absolute") << QByteArray("/var/lib/other.db") << "is a path";
    QTest::newRow("for Windows") << QByteArray("..\\\\other.db") << "is a path";
    QTest::newRow("escaped") << QByteArray("\\x2e.\\x2fother.db") << "is a path";
    QTest::newRow("empty parts") << QByteArray("//") << "is a path";
    QTest::newRow("the folder") << QByteArray(".") << "is that of a folder";
    QTest::newRow("the folder above") << QByteArray("..") << "is that of a folder";
    QTest::newRow("zero character") << QByteArray("@String(other.db\\0.dat)") << "contains a zero character";
}

void tst_ProjectFile::recordingIsAFileBesideTheProject()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, problem);
    writeContent("[General]\ndatabaseName=" + name + "\nDeviceList={}\n");
    const ProjectFile project(m_path);
    QVERIFY(project.readDevices());
    const QString folder = m_folder->path() + QLatin1Char('/');
    if (problem.isEmpty()) {
        QCOMPARE(project.refusal(), QString());
        QCOMPARE(project.databasePath(), folder + QString::fromLatin1(name));
    } else {
        QVERIFY2(project.refusal().endsWith("\", " + problem + '.'), qPrintable(project.refusal()));
        QCOMPARE(project.databasePath(), folder);
    }
}

void tst_ProjectFile::keepsTheLayout_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::newRow("none") << QStringList();
    QTest::newRow("one") << QStringList{"Dashboard1"};
    QTest::newRow("four") << QStringList{"Dashboard1", "Dashboard2", "Dashboard3", "Dashboard4"};
    QTest::newRow("commas and quotes") << QStringList{"a, b", "\"c\"", "", "d;e=f"};
    QTest::newRow("beyond ASCII") << QStringList{QStringLiteral("K\u00FChlraum \u00B0C \u2013 1"), "x"};
    QTest::newRow("looks like a type") << QStringList{"@ByteArray(x)", "@Invalid()"};
}

void tst_ProjectFile::keepsTheLayout()
{
    QFETCH(QStringList, names);
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveLayout(300000, names));
    QCOMPARE(project.dataInterval(), 300000);
    QCOMPARE(project.dashboardNames(), names);
    QCOMPARE(stored(QStringLiteral("DataInterval")).toInt(), 300000);
    QCOMPARE(stored(QStringLiteral("dashboardNames")).toStringList(), names);
    QCOMPARE(project.projectName(), QStringLiteral("Kitchen"));
}

void tst_ProjectFile::backupIsTheListBefore()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveDevices(devices(1)));
    QCOMPARE(stored(QStringLiteral("Backup")).toByteArray(), QByteArray());
    const QByteArray first = stored(QStringLiteral("DeviceList")).toByteArray();
    QVERIFY(!first.isEmpty());

    QVERIFY(project.saveDevices(devices(2)));
    QCOMPARE(stored(QStringLiteral("Backup")).toByteArray(), first);
    QVERIFY(stored(QStringLiteral("DeviceList")).toByteArray() != first);
    QVERIFY(project.readDevices() == devices(2));
    QVERIFY(content().indexOf("\nBackup=") < content().indexOf("\nDeviceList="));
}

void tst_ProjectFile::namesSurviveInTheFile()
{
    const QString name = QStringLiteral("K\u00FChlraum \u00B0C \u2013 1 \"a\\b\";=,%\t\u51B7");
    ProjectFile project(m_path);
    QVERIFY(project.create(name, 10000));
    QVERIFY(project.saveDevices(devices(3, name)));
    QCOMPARE(project.projectName(), name);
    QCOMPARE(stored(QStringLiteral("projectName")).toString(), name);

    // A file that this program has not written, so that nothing comes from memory.
    const QString moved = m_folder->filePath(QStringLiteral("moved.tpc"));
    QVERIFY(QFile::rename(m_path, moved));
    const ProjectFile other(moved);
    QVERIFY(other.readDevices() == devices(3, name));
    QCOMPARE(other.projectName(), name);
}

void tst_ProjectFile::byteArraysAreStoredWithoutACodec()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveDevices(devices(1, QStringLiteral("\u00FC"))));
    QVERIFY2(content().contains("DeviceList=\"@ByteArray({\\\"devices\\\": [{"), content().constData());
    QVERIFY2(content().contains("\\\"DeviceName\\\": \\\"\\xc3\\xbc\\\""), content().constData());
}

void tst_ProjectFile::keepsRecordTimes()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.setRecordStartTime(QStringLiteral("2024-05-06 07:08:09")));
    QVERIFY(project.setRecordStopTime(QStringLiteral("2024-05-06 10:11:12")));
    QCOMPARE(stored(QStringLiteral("record_start_time")).toString(), QStringLiteral("2024-05-06 07:08:09"));
    QCOMPARE(stored(QStringLiteral("record_stop_time")).toString(), QStringLiteral("2024-05-06 10:11:12"));
}

void tst_ProjectFile::keepsOtherKeys()
{
    writeContent("[General]\nprojectName=Kitchen\nnote=\"keep, me\"\n\n[Viewer]\nzoom=3\n");
    ProjectFile project(m_path);
    QVERIFY(project.saveDevices(devices(1)));
    QVERIFY(project.saveLayout(1000, {"a"}));
    QCOMPARE(stored(QStringLiteral("note")).toString(), QStringLiteral("keep, me"));
    QCOMPARE(stored(QStringLiteral("Viewer/zoom")).toInt(), 3);
    QCOMPARE(stored(QStringLiteral("projectName")).toString(), QStringLiteral("Kitchen"));
}

void tst_ProjectFile::missingListIsNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("other keys only") << QByteArray("[General]\nprojectName=Kitchen\n");
    QTest::newRow("empty list") << QByteArray("[General]\nDeviceList=\n");
    QTest::newRow("no JSON") << QByteArray("[General]\nDeviceList=@ByteArray(none)\n");
    QTest::newRow("cut JSON") << QByteArray("[General]\nDeviceList=\"@ByteArray({\\\"devices\\\": [)\"\n");
    QTest::newRow("list in another section") << QByteArray("[Old]\nDeviceList=@ByteArray({})\n");
    QTest::newRow("binary") << QByteArray("SQLite format 3\0\1\2\xFF\xFE[", 21);
    QTest::newRow("zero bytes") << QByteArray(4096, '\0');
}

void tst_ProjectFile::missingListIsNothing()
{
    QFETCH(QByteArray, bytes);
    writeContent(bytes);
    QVERIFY(!ProjectFile(m_path).readDevices());
    QCOMPARE(content(), bytes);
}

void tst_ProjectFile::hostileValuesDoNoHarm()
{
    writeContent("[General]\nprojectName=a, b\nDataInterval=soon\ndatabaseName=@Rect(1 2 3 4)\n"
                 "dashboardNames=@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xff)\n"
                 "DeviceList=\"{\\\"devices\\\": [{\\\"DeviceNumber\\\": \\\"7\\\",\\\"DeviceType\\\": "
                 "\\\"SERIAL\\\",\\\"ch1_min\\\": \\\"nan\\\","
                 "\\\"DevicePort\\\": \\\"99999\\\",\\\"DashboardNumber\\\": \\\"2\\\"}]}\"\n");
    const ProjectFile project(m_path);
    QCOMPARE(project.dataInterval(), 0);
    QCOMPARE(project.projectName(), QString());
    QCOMPARE(project.dashboardNames(), QStringList());
    QCOMPARE(project.databasePath(), m_folder->path() + QLatin1Char('/'));
    const auto list = project.readDevices();
    QVERIFY(list);
    QCOMPARE(list->size(), 1);
    QCOMPARE(list->first().range.min1, 0.0F);
    QCOMPARE(int(list->first().port), 23);
    QCOMPARE(list->first().dashboardNumber, 0);
}

void tst_ProjectFile::craftedObjectsReadLikeNothing_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::newRow("list of 268 million") << QByteArray("@Variant(\\0\\0\\0\\t\\xf\\xff\\xff\\xff)");
    QTest::newRow("its mark escaped") << QByteArray("\\x40Variant(\\0\\0\\0\\t\\xf\\xff\\xff\\xff)");
    QTest::newRow("nested lists") << QByteArray("@Variant(" + QByteArray("\\0\\0\\0\\t\\0\\0\\0\\x1").repeated(10000) +
                                                ')');
}

/// Each would take the memory or the stack from the toolkit's own reader.
void tst_ProjectFile::craftedObjectsReadLikeNothing()
{
    QFETCH(QByteArray, object);
    // The smallest such file.
    writeContent("x=" + object);
    QVERIFY(!ProjectFile(m_path).readDevices());
    QVERIFY(ProjectFile(m_path).saveLayout(1000, {}));

    QByteArray text = "[Viewer]\nzoom=" + object + "\n[General]\n";
    for (const char *key : {"Backup", "DataInterval", "dashboardNames", "databaseName", "%70rojectName", "x"})
        text += QByteArray(key) + '=' + object + '\n';
    writeContent(text + "DeviceList=@ByteArray({})\n");
    const ProjectFile project(m_path);
    QVERIFY(project.readDevices());
    QCOMPARE(project.dataInterval(), 0);
    QCOMPARE(project.projectName(), QString());
    QCOMPARE(project.dashboardNames(), QStringList());
    QVERIFY(ProjectFile(m_path).saveDevices(devices(1)));
    QVERIFY(content().startsWith("[Viewer]\nzoom=" + object + "\n"));
    QVERIFY(content().contains("\nx=" + object + "\n"));
}

void tst_ProjectFile::whatOpensCanBeSaved_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray list = "DeviceList=@ByteArray({})\n";
    QTest::newRow("without a section or a line end") << QByteArray("DeviceList={}");
    QTest::newRow("a line [") << QByteArray("[\n[General]\n" + list);
    QTest::newRow("a line [ at the end") << QByteArray(list + "[");
    QTest::newRow("a line =") << QByteArray("[General]\n=\n" + list);
    QTest::newRow("a key behind a line [") << QByteArray(list + "[\nx=1\n");
    QTest::newRow("a value without a key") << QByteArray("[General]\n=x\n" + list);
    QTest::newRow("a section without a name") << QByteArray(list + "[]\nx=1\n");
    QTest::newRow("keys of blanks and slashes") << QByteArray("\\=1\n//x=2\n%20=3\n" + list);
    QTest::newRow("words") << QByteArray("[General]\nA note\n" + list);
    QTest::newRow("a quotation without end") << QByteArray(list + "x=\"");
    QTest::newRow("an escape without end") << QByteArray(list + "x=\\");
    QTest::newRow("windows line ends") << QByteArray("[General]\r\nDeviceList={}\r\n");
    QTest::newRow("a byte-order mark") << QByteArray("\xEF\xBB\xBF[General]\n" + list);
    QTest::newRow("several lists") << QByteArray(list + "[General]\n%44eviceList={}\n");
}

void tst_ProjectFile::whatOpensCanBeSaved()
{
    QFETCH(QByteArray, text);
    writeContent(text);
    ProjectFile project(m_path);
    QVERIFY(project.readDevices());
    QVERIFY(project.saveDevices(devices(2)));
    QVERIFY(project.saveLayout(5000, {"a"}));
    QVERIFY(project.setRecordStartTime(QStringLiteral("2024-05-06 07:08:09")));
    QVERIFY(project.readDevices() == devices(2));
    QCOMPARE(project.dataInterval(), 5000);
    QCOMPARE(stored(QStringLiteral("DataInterval")).toInt(), 5000);
    QCOMPARE(stored(QStringLiteral("Backup")).toByteArray(), QByteArray("{}"));
    QCOMPARE(stored(QStringLiteral("record_start_time")).toString(), QStringLiteral("2024-05-06 07:08:09"));
    QVERIFY(stored(QStringLiteral("DeviceList")).toByteArray().startsWith("{\"devices\": [{"));
}

void tst_ProjectFile::largerFilesAreNoProjects()
{
    writeContent("DeviceList={}\n" + QByteArray(4 * 1024 * 1024, '\n'));
    const QByteArray before = content();
    QVERIFY(!ProjectFile(m_path).readDevices());
    QVERIFY(!ProjectFile(m_path).saveLayout(1000, {}));
    QCOMPARE(content(), before);
}

void tst_ProjectFile::replacesTheFileWhole()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    const QByteArray before = content();
    // A second name of the old file would show every byte written into it.
    const QString oldFile = m_folder->filePath(QStringLiteral("old"));
    QCOMPARE(link(QFile::encodeName(m_path).constData(), QFile::encodeName(oldFile).constData()), 0);
    QVERIFY(project.saveDevices(devices(2)));
    QFile file(oldFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QVERIFY(content() != before);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList({"Kitchen.tpc", "old"}));
}

void tst_ProjectFile::linkAndPermissionsStay()
{
    QVERIFY(ProjectFile(m_path).create(QStringLiteral("Kitchen"), 10000));
    constexpr auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::WriteGroup;
    QVERIFY(QFile::setPermissions(m_path, permissions));
    const QString linkPath = m_folder->filePath(QStringLiteral("link.tpc"));
    QVERIFY(QFile::link(m_path, linkPath));
    QVERIFY(ProjectFile(linkPath).saveDevices(devices(1)));
    QVERIFY(QFileInfo(linkPath).isSymLink());
    QVERIFY(ProjectFile(m_path).readDevices() == devices(1));
    QVERIFY(QFile::permissions(m_path).testFlag(QFile::WriteGroup));
    QVERIFY(!QFile::permissions(m_path).testFlag(QFile::ReadOther));
}

/// Versions of the same size follow each other faster than the file system's clock ticks.
void tst_ProjectFile::readsWhatWasJustWritten()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    for (int i = 100; i < 150; ++i) {
        QVERIFY(project.saveLayout(i, {}));
        QCOMPARE(project.dataInterval(), i);
    }
}

void tst_ProjectFile::fullDiskLeavesTheOldFile()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveDevices(devices(1)));
    QVERIFY(project.setRecordStartTime(QStringLiteral("2024-05-06 07:08:09")));
    const QByteArray before = content();
    {
        const FullDisk full(nearlyNothing);
        QVERIFY(!project.saveDevices(devices(20)));
        QVERIFY(!project.saveDevices(devices(21)));
        QVERIFY(!project.setRecordStopTime(QString(3000, QLatin1Char('9'))));
        QVERIFY(!project.saveLayout(1000, {QString(3000, QLatin1Char('x'))}));
        QVERIFY(project.readDevices() == devices(1));
        QCOMPARE(project.dataInterval(), 10000);
        QCOMPARE(project.dashboardNames(), QStringList());
    }
    QCOMPARE(content(), before);
    QVERIFY(project.readDevices() == devices(1));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList("Kitchen.tpc"));

    // The next save that succeeds holds its own news only, and the backup is a list that was on the disk.
    const QByteArray first = stored(QStringLiteral("DeviceList")).toByteArray();
    QVERIFY(project.saveDevices(devices(22)));
    QVERIFY(project.readDevices() == devices(22));
    QCOMPARE(stored(QStringLiteral("Backup")).toByteArray(), first);
    QCOMPARE(stored(QStringLiteral("DataInterval")).toInt(), 10000);
    QVERIFY(!stored(QStringLiteral("record_stop_time")).isValid());
    QVERIFY(!stored(QStringLiteral("dashboardNames")).isValid());
    QCOMPARE(stored(QStringLiteral("record_start_time")).toString(), QStringLiteral("2024-05-06 07:08:09"));
}

void tst_ProjectFile::fullDiskAtCreation()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveDevices(devices(2)));
    const QByteArray before = content();
    {
        const FullDisk full(nearlyNothing);
        QVERIFY(!project.create(QString(3000, QLatin1Char('x')), 1000));
    }
    QCOMPARE(content(), before);
    QVERIFY(project.readDevices() == devices(2));
    QVERIFY(project.setRecordStartTime(QStringLiteral("2024-05-06 07:08:09")));
    QCOMPARE(stored(QStringLiteral("projectName")).toString(), QStringLiteral("Kitchen"));
    QVERIFY(project.readDevices() == devices(2));
}

void tst_ProjectFile::fileDeletedBehindOurBack()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveDevices(devices(2)));
    QVERIFY(QFile::remove(m_path));
    QVERIFY(!project.saveDevices(devices(3)));
    QVERIFY(!project.saveLayout(1000, {"a"}));
    QVERIFY(!project.setRecordStartTime(QStringLiteral("2024-05-06 07:08:09")));
    QVERIFY(!project.setRecordStopTime(QStringLiteral("2024-05-06 07:08:09")));
    QVERIFY(!QFileInfo::exists(m_path));
    QVERIFY(!project.readDevices());
    QCOMPARE(project.projectName(), QString());

    QVERIFY(project.create(QStringLiteral("Again"), 1000));
    QCOMPARE(content(), QByteArray("[General]\nDataInterval=1000\ndatabaseName=Again.dat\nprojectName=Again\n"));
}

void tst_ProjectFile::folderDeletedBehindOurBack()
{
    const QString folder = m_folder->filePath(QStringLiteral("inner"));
    QVERIFY(QDir().mkpath(folder));
    ProjectFile project(folder + QStringLiteral("/Kitchen.tpc"));
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(!project.saveDevices(devices(3)));
    QVERIFY(!project.readDevices());
    QVERIFY(!QFileInfo::exists(folder));
}

void tst_ProjectFile::readOnlyFolder()
{
    ProjectFile project(m_path);
    QVERIFY(project.create(QStringLiteral("Kitchen"), 10000));
    QVERIFY(project.saveDevices(devices(1)));
    constexpr auto readers = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    constexpr auto writers = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    constexpr auto visitors = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    QVERIFY(QFile::setPermissions(m_path, readers | writers));
    QVERIFY(QFile::setPermissions(m_folder->path(), readers | visitors));
    const QByteArray before = content();
    {
        const OrdinaryUser nobody;
        QVERIFY(!project.saveDevices(devices(2)));
        QVERIFY(!project.setRecordStartTime(QStringLiteral("2024-05-06 07:08:09")));
        QVERIFY(!ProjectFile(m_folder->filePath(QStringLiteral("New.tpc"))).create(QStringLiteral("New"), 1000));
        QVERIFY(project.readDevices() == devices(1));
    }
    QVERIFY(QFile::setPermissions(m_folder->path(), readers | writers | visitors));
    QCOMPARE(content(), before);
    QVERIFY(project.saveDevices(devices(2)));
    QVERIFY(project.readDevices() == devices(2));
}

QTEST_GUILESS_MAIN(tst_ProjectFile)
#include "tst_ProjectFile.moc"
