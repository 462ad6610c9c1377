#include "project/AppSettings.h"

#include "project/SettingsStore.h"

#include <QFileInfo>

#include <algorithm>

namespace {

/// Where the file really is, if there is one.
QString placeOf(const QString &path)
{
    const QFileInfo file(path);
    const QString canonical = file.canonicalFilePath();
    return canonical.isEmpty() ? file.absoluteFilePath() : canonical;
}

/// The projects of both; what another station has added meanwhile keeps its place in front of the older ones.
void takeIn(AppSettings &settings, const AppSettings &stored)
{
    QStringList list = stored.recentProjectList;
    for (auto name = settings.recentProjectList.crbegin(); name != settings.recentProjectList.crend(); ++name) {
        if (!list.contains(*name))
            list.prepend(*name);
    }
    settings.recentProjectList = list;
    for (auto entry = stored.recentProjects.begin(); entry != stored.recentProjects.end(); ++entry)
        settings.recentProjects.insert(entry.key(), entry.value());
}

} // namespace

void AppSettings::load()
{
    SettingsStore::read(*this);
}

bool AppSettings::save() const
{
    return SettingsStore().write(*this);
}

bool AppSettings::saveAutoFlags() const
{
    return SettingsStore().writeFlags(*this);
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
    if (isListed(name, path))
        return true;
    SettingsStore store;
    AppSettings stored;
    SettingsStore::read(stored);
    takeIn(*this, stored);
    if (!isListed(name, path)) {
        recentProjects.insert(name, path);
        recentProjectList.prepend(name);
    }
    pruneRecentProjects();
    return store.write(*this);
}

bool AppSettings::isListed(const QString &name, const QString &path) const
{
    if (recentProjects.contains(name) || recentProjectList.contains(name))
        return true;
    const QString place = placeOf(path);
    return std::any_of(recentProjectList.begin(), recentProjectList.end(),
                       [&](const QString &other) { return placeOf(recentProjects.value(other).toString()) == place; });
}

QString AppSettings::autoLoadPath() const
{
    if (!autoLoad || recentProjectList.isEmpty() || recentProjects.isEmpty())
        return {};
    return recentProjects.value(recentProjectList.first()).toString();
}
