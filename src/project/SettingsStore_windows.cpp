#include "project/SettingsKeys.h"
#include "project/SettingsStore.h"

#include <QDir>
#include <QSettings>

namespace {

constexpr int patienceMs = 3000;

void setFlags(QSettings &store, const AppSettings &settings)
{
    store.setValue(settingskey::autoLoad, settings.autoLoad);
    store.setValue(settingskey::autoRecord, settings.autoRecord);
    store.setValue(settingskey::keepAlive, settings.keepAlive);
}

bool isSaved(QSettings &store)
{
    store.sync();
    return store.status() == QSettings::NoError;
}

} // namespace

// The registry has no place for a lock; each user has a temporary folder.
SettingsStore::SettingsStore() : m_lock(QDir::temp().filePath(QStringLiteral("sorvanto-lite-settings.lock")))
{
    m_lock.tryLock(patienceMs);
}

void SettingsStore::read(AppSettings &settings)
{
    const QSettings store(settingskey::organization, settingskey::application);
    settings.recentProjectList = store.value(settingskey::list).toStringList();
    settings.recentProjects = store.value(settingskey::projects).toMap();
    settings.autoLoad = store.value(settingskey::autoLoad).toBool();
    settings.autoRecord = store.value(settingskey::autoRecord).toBool();
    settings.keepAlive = store.value(settingskey::keepAlive).toBool();
}

bool SettingsStore::write(const AppSettings &settings)
{
    QSettings store(settingskey::organization, settingskey::application);
    store.setValue(settingskey::list, settings.recentProjectList);
    store.setValue(settingskey::projects, settings.recentProjects);
    setFlags(store, settings);
    return isSaved(store);
}

bool SettingsStore::writeFlags(const AppSettings &settings)
{
    QSettings store(settingskey::organization, settingskey::application);
    setFlags(store, settings);
    return isSaved(store);
}
