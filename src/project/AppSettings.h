#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// The settings of one user: recent projects and the three behaviour flags, in the platform's settings store.
class AppSettings
{
public:
    QStringList recentProjectList; ///< names, most recently added first
    QVariantMap recentProjects;    ///< name to full path
    bool autoLoad = false;
    bool autoRecord = false;
    bool keepAlive = false;

    void load();
    /// Whether the settings are in the store; if not, it stays as it was.
    bool save() const;
    /// Writes the three flags only.
    bool saveAutoFlags() const;

    /// Drops the projects whose file is gone; the store is not written.
    void pruneRecentProjects();
    /// Puts a project in front and saves, with what other stations have listed meanwhile. A listed name stays where and
    /// as it is, and so does a file that is listed under another name, its former one. False when it could not be
    /// saved.
    bool addRecentProject(const QString &name, const QString &path);
    /// The path to load at start, or an empty text when auto-load is off or nothing is listed.
    QString autoLoadPath() const;

private:
    bool isListed(const QString &name, const QString &path) const;
};
