#include "project/AppSettings.h"

#include <QFileInfo>
#include <QSettings>

namespace {

const QString listKey = QStringLiteral("list");
const QString projectsKey = QStringLiteral("projects");
const QString autoLoadKey = QStringLiteral("autoLoad");
const QString autoRecordKey = QStringLiteral("autoRecord");
const QString keepAliveKey = QStringLiteral("keepAlive");

/// The user's settings, opened in the one group that the station uses.
class Store : public QSettings
{
public:
    Store() : QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite"))
    {
        beginGroup(QStringLiteral("RecentProjects"));
    }

    bool write()
    {
        sync();
        return status() == NoError;
    }
};

QVariantMap toMap(const QVariant &value)
{
    if (value.userType() != QMetaType::QVariantHash)
        return value.toMap();
    QVariantMap map;
    const QVariantHash hash = value.toHash();
    for (auto it = hash.begin(); it != hash.end(); ++it)
        map.insert(it.key(), it.value());
    return map;
}

void setFlags(Store &store, const AppSettings &settings)
{
    store.setValue(autoLoadKey, settings.autoLoad);
    store.setValue(autoRecordKey, settings.autoRecord);
    store.setValue(keepAliveKey, settings.keepAlive);
}

} // namespace

void AppSettings::load()
{
    const Store store;
    recentProjectList = store.value(listKey).toStringList();
    recentProjects = toMap(store.value(projectsKey));
    autoLoad = store.value(autoLoadKey).toBool();
    autoRecord = store.value(autoRecordKey).toBool();
    keepAlive = store.value(keepAliveKey).toBool();
}

bool AppSettings::save() const
{
    Store store;
    store.setValue(listKey, recentProjectList);
    store.setValue(projectsKey, recentProjects);
    setFlags(store, *this);
    return store.write();
}

bool AppSettings::saveAutoFlags() const
{
    Store store;
    setFlags(store, *this);
    return store.write();
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

void AppSettings::addRecentProject(const QString &name, const QString &path)
{
    if (recentProjects.contains(name) || recentProjectList.contains(name))
        return;
    recentProjects.insert(name, path);
    recentProjectList.prepend(name);
    pruneRecentProjects();
    save();
}

QString AppSettings::autoLoadPath() const
{
    if (!autoLoad || recentProjectList.isEmpty() || recentProjects.isEmpty())
        return {};
    return recentProjects.value(recentProjectList.first()).toString();
}
