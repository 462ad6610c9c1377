#include "FuzzGround.h"

#include "project/AppSettings.h"
#include "project/SettingsKeys.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace {

bool areAlike(const AppSettings &a, const AppSettings &b)
{
    return a.recentProjectList == b.recentProjectList && a.recentProjects == b.recentProjects &&
           a.autoLoad == b.autoLoad && a.autoRecord == b.autoRecord && a.keepAlive == b.keepAlive;
}

AppSettings loaded()
{
    AppSettings settings;
    settings.load();
    return settings;
}

} // namespace

/// A user's settings of any content: what is read can be saved, and reads back the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QString path = QSettings(settingskey::organization, settingskey::application).fileName();
    QDir().mkpath(QFileInfo(path).absolutePath());
    writeFile(path, QByteArray(reinterpret_cast<const char *>(data), int(size)));

    AppSettings settings = loaded();
    require(settings.saveAutoFlags(), "the flags can be saved");
    require(areAlike(settings, loaded()), "the flags leave the projects");
    require(settings.save(), "what was read can be saved");
    require(areAlike(settings, loaded()), "what was saved is read alike");
    const QByteArray content = contentOf(path);
    require(settings.save() && contentOf(path) == content, "the same settings make the same file");

    const QString project = fuzzFile("Lab.tpc");
    writeFile(project, "[General]\n");
    require(settings.addRecentProject(project, project), "a project can be listed");
    require(areAlike(settings, loaded()), "the list is read alike");
    require(settings.recentProjects.contains(project) || !settings.recentProjectList.isEmpty(), "it is listed");
    return 0;
}
