#include "project/AppSettings.h"

#include "project/IniFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace {

const QString organization = QStringLiteral("SorvantoLite");
const QString application = QStringLiteral("Sorvanto Lite");

const QString listKey = QStringLiteral("RecentProjects/list");
const QString projectsKey = QStringLiteral("RecentProjects/projects");
const QString autoLoadKey = QStringLiteral("RecentProjects/autoLoad");
const QString autoRecordKey = QStringLiteral("RecentProjects/autoRecord");
const QString keepAliveKey = QStringLiteral("RecentProjects/keepAlive");

bool write(const IniValues &values)
{
    QSettings store(organization, application);
#ifdef Q_OS_LINUX
    // Here the native store is a file, which a full disk must not damage.
    const QString path = store.fileName();
    return QDir().mkpath(QFileInfo(path).absolutePath()) && rewriteIniFile(path, values);
#else
    setValues(store, values);
    store.sync();
    return store.status() == QSettings::NoError;
#endif
}

IniValues flags(const AppSettings &settings)
{
    return {{autoLoadKey, settings.autoLoad}, {autoRecordKey, settings.autoRecord}, {keepAliveKey, settings.keepAlive}};
}

} // namespace

void AppSettings::load()
{
    const QSettings store(organization, application);
    recentProjectList = store.value(listKey).toStringList();
    recentProjects = store.value(projectsKey).toMap();
    autoLoad = store.value(autoLoadKey).toBool();
    autoRecord = store.value(autoRecordKey).toBool();
    keepAlive = store.value(keepAliveKey).toBool();
}

bool AppSettings::save() const
{
    const IniValues projects{{listKey, recentProjectList}, {projectsKey, recentProjects}};
    return write(projects + flags(*this));
}

bool AppSettings::saveAutoFlags() const
{
    return write(flags(*this));
}

void AppSettings::pruneRecentProjects()
{
    const QStringList names = recentProjects.keys();
    for (const QString &name : names) {
        if (QFileInfo(recentProjects.value(name).toString()).isFile())
            continue;
        recentProjects.remove(name);
        recentProjectList.removeOne(name);
    }
}

bool AppSettings::addRecentProject(const QString &name, const QString &path)
{
    if (recentProjects.contains(name) || recentProjectList.contains(name))
        return true;
    recentProjects.insert(name, path);
    recentProjectList.prepend(name);
    pruneRecentProjects();
    return save();
}

QString AppSettings::autoLoadPath() const
{
    if (!autoLoad || recentProjectList.isEmpty() || recentProjects.isEmpty())
        return {};
    return recentProjects.value(recentProjectList.first()).toString();
}
