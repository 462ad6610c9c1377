#include "project/IniFile.h"
#include "project/SettingsKeys.h"
#include "project/SettingsStore.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <utility>

// The toolkit's own class tells where the file is and must not do more: it evaluates whatever object a crafted file
// holds, and when the disk fills up it puts a truncated file in place of the old one and reports success.

namespace {

constexpr int patienceMs = 3000;

QString filePath()
{
    return QSettings(settingskey::organization, settingskey::application).fileName();
}

/// The user's own file, and behind it those with which an administrator sets what holds for everybody.
QList<IniText> texts()
{
    QStringList paths{filePath()};
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation).mid(1);
    for (const QString &folder : folders)
        paths += QStringLiteral("%1/%2/%3.conf").arg(folder, settingskey::organization, settingskey::application);
    QList<IniText> result;
    for (const QString &path : std::as_const(paths))
        result += readIniFile(path).value_or(IniText());
    return result;
}

IniValue valueIn(const QList<IniText> &texts, const QString &key)
{
    IniValue value;
    for (const IniText &text : texts) {
        value = text.value(key);
        if (value.isPresent())
            break;
    }
    return value;
}

IniValue::TextMap textMapOf(const QVariantMap &map)
{
    IniValue::TextMap result;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        result.insert(entry.key(), entry.value().toString());
    return result;
}

QVariantMap variantMapOf(const IniValue::TextMap &map)
{
    QVariantMap result;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        result.insert(entry.key(), entry.value());
    return result;
}

bool writeValues(const IniValues &values)
{
    const QString path = filePath();
    return QDir().mkpath(QFileInfo(path).absolutePath()) && rewriteIniFile(path, values);
}

IniValues flagsOf(const AppSettings &settings)
{
    return {{settingskey::autoLoad, IniValue::fromFlag(settings.autoLoad)},
            {settingskey::autoRecord, IniValue::fromFlag(settings.autoRecord)},
            {settingskey::keepAlive, IniValue::fromFlag(settings.keepAlive)}};
}

} // namespace

SettingsStore::SettingsStore() : m_lock(filePath() + QStringLiteral(".lock"))
{
    QDir().mkpath(QFileInfo(filePath()).absolutePath());
    m_lock.tryLock(patienceMs);
}

void SettingsStore::read(AppSettings &settings)
{
    const QList<IniText> stored = texts();
    settings.recentProjectList = valueIn(stored, settingskey::list).toTexts();
    settings.recentProjects = variantMapOf(valueIn(stored, settingskey::projects).toTextMap());
    settings.autoLoad = valueIn(stored, settingskey::autoLoad).toFlag();
    settings.autoRecord = valueIn(stored, settingskey::autoRecord).toFlag();
    settings.keepAlive = valueIn(stored, settingskey::keepAlive).toFlag();
}

bool SettingsStore::write(const AppSettings &settings)
{
    const IniValues projects{{settingskey::list, IniValue::fromTexts(settings.recentProjectList)},
                             {settingskey::projects, IniValue::fromTextMap(textMapOf(settings.recentProjects))}};
    return writeValues(projects + flagsOf(settings));
}

bool SettingsStore::writeFlags(const AppSettings &settings)
{
    return writeValues(flagsOf(settings));
}
