#include "SampleFiles.h"

#include "project/AppSettings.h"
#include "project/IniLines.h"
#include "project/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

/// Thousands of project and settings files, each damaged in its own way: all are read without harm, what is read can
/// be saved, and whatever is not ours stays in the file as it stood.
class tst_DamagedFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void projects();
    void settings();

private:
    QByteArray contentOf(const QString &path) const;
    bool write(const QString &path, const QByteArray &content) const;

    // In memory where there is such a disk: thousands of saves would wait for another one.
    QTemporaryDir m_folder{QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                               ? QStringLiteral("/dev/shm/damaged-XXXXXX")
                               : QDir::temp().filePath(QStringLiteral("damaged-XXXXXX"))};
    QString m_project;
    QString m_settings;
};

namespace {

constexpr int filesOfEach = 2000;
constexpr quint32 seed = 20240506;

const QList<QByteArray> tokens{"\n",
                               "\r\n",
                               "\r",
                               "[",
                               "]",
                               "=",
                               "\"",
                               "\\",
                               ";",
                               ",",
                               "%",
                               "@Variant(",
                               "\\x40Variant(",
                               "@ByteArray(",
                               "@Invalid()",
                               ")",
                               "\\0\\0\\0\\t\\xf\\xff\\xff\\xff",
                               "\\0\\0\\0\\b\\0\\0\\0\\x1",
                               "\n[General]\n",
                               "\n[%General]\n",
                               "\n[RecentProjects]\n",
                               "\nDeviceList={}\n",
                               "\n%44eviceList=\"{\\\"devices\\\": []}\"\n",
                               "\nDataInterval=1e9\n",
                               "\nRecentProjects\\list=a\n",
                               "{\\\"devices\\\": [",
                               "[[[[[[[[[[[[[[[[",
                               "\xEF\xBB\xBF",
                               "\xC3",
                               QByteArray(1, '\0')};

QByteArray damaged(QByteArray text, QRandomGenerator &random)
{
    for (int changes = 1 + random.bounded(4); changes > 0; --changes) {
        const int at = random.bounded(int(text.size()) + 1);
        const int length = random.bounded(1 + random.bounded(200));
        switch (random.bounded(6)) {
        case 0:
            text.insert(at, tokens.at(random.bounded(int(tokens.size()))));
            break;
        case 1:
            text.replace(at, length, tokens.at(random.bounded(int(tokens.size()))));
            break;
        case 2:
            text.insert(random.bounded(int(text.size()) + 1), text.mid(at, length));
            break;
        case 3:
            text.insert(at, char(random.bounded(256)));
            break;
        case 4:
            text.remove(at, length);
            break;
        default:
            text.truncate(text.size() - random.bounded(int(text.size()) / 4 + 1));
        }
    }
    return text;
}

/// The lines that give none of @p keys a value, as they stand.
QList<QByteArray> foreignLines(const QByteArray &text, const QStringList &keys)
{
    QList<QByteArray> lines;
    IniLines line(text);
    while (line.next()) {
        const bool isOurs =
            std::any_of(keys.begin(), keys.end(), [&line](const QString &key) { return line.sets(key); });
        if (!isOurs)
            lines += text.mid(line.start(), line.end() - line.start());
    }
    return lines;
}

/// Whether @p lines begin with @p fewer or hold them in that order, but for a header that was added.
bool holdAll(const QList<QByteArray> &lines, const QList<QByteArray> &fewer)
{
    int found = 0;
    for (const QByteArray &line : lines) {
        if (found < fewer.size() && line == fewer.at(found))
            ++found;
    }
    return found == fewer.size();
}

} // namespace

void tst_DamagedFiles::initTestCase()
{
    m_project = m_folder.filePath(SampleFiles::projectFile());
    m_settings = m_folder.filePath(SampleFiles::settingsFile());
    QVERIFY(SampleFiles::write(m_folder.path()));
}

QByteArray tst_DamagedFiles::contentOf(const QString &path) const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool tst_DamagedFiles::write(const QString &path, const QByteArray &content) const
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

void tst_DamagedFiles::projects()
{
    const QStringList ours{"Backup", "DataInterval", "DeviceList", "dashboardNames"};
    const QByteArray sound = contentOf(m_project) + "\n[Viewer]\nzoom=@Rect(1 2 3 4)\n";
    QRandomGenerator random(seed);
    int opened = 0;
    for (int i = 0; i < filesOfEach; ++i) {
        const QByteArray before = damaged(sound, random);
        QVERIFY(write(m_project, before));
        ProjectFile project(m_project);
        const auto devices = project.readDevices();
        QVERIFY(project.dataInterval() >= 0);
        QVERIFY(project.databasePath().startsWith(m_folder.path() + QLatin1Char('/')));
        const QStringList names = project.dashboardNames() + QStringList(project.projectName());
        QVERIFY2(project.saveLayout(i, names), before.constData());
        QCOMPARE(project.dataInterval(), i);
        QCOMPARE(project.dashboardNames(), names);
        if (!devices)
            continue;
        ++opened;
        QVERIFY(project.saveDevices(*devices));
        QVERIFY2(project.readDevices() == devices, before.constData());
        QVERIFY2(holdAll(foreignLines(contentOf(m_project), ours), foreignLines(before, ours)), before.constData());
    }
    // Damage that leaves nothing to open, or nothing damaged, would prove little.
    QVERIFY2(opened > filesOfEach / 10 && opened < filesOfEach, qPrintable(QString::number(opened)));
}

void tst_DamagedFiles::settings()
{
    const QStringList ours{"RecentProjects/list", "RecentProjects/projects", "RecentProjects/autoLoad",
                           "RecentProjects/autoRecord", "RecentProjects/keepAlive"};
    const QByteArray sound = contentOf(m_settings) + "\n[Viewer]\nzoom=@Rect(1 2 3 4)\n";
    QRandomGenerator random(seed);
    for (int i = 0; i < filesOfEach; ++i) {
        const QByteArray before = damaged(sound, random);
        QVERIFY(write(m_settings, before));
        AppSettings settings;
        settings.load();
        QVERIFY2(settings.save(), before.constData());
        AppSettings next;
        next.load();
        QCOMPARE(next.recentProjectList, settings.recentProjectList);
        QCOMPARE(next.recentProjects, settings.recentProjects);
        QCOMPARE(next.autoLoad, settings.autoLoad);
        QVERIFY2(holdAll(foreignLines(contentOf(m_settings), ours), foreignLines(before, ours)), before.constData());
    }
}

QTEST_GUILESS_MAIN(tst_DamagedFiles)
#include "tst_DamagedFiles.moc"
