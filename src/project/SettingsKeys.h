#pragma once

#include <QString>

/// Where the settings are, and the keys under which every platform keeps them.
namespace settingskey {
const QString organization = QStringLiteral("SorvantoLite");
const QString application = QStringLiteral("Sorvanto Lite");

const QString list = QStringLiteral("RecentProjects/list");
const QString projects = QStringLiteral("RecentProjects/projects");
const QString autoLoad = QStringLiteral("RecentProjects/autoLoad");
const QString autoRecord = QStringLiteral("RecentProjects/autoRecord");
const QString keepAlive = QStringLiteral("RecentProjects/keepAlive");
} // namespace settingskey
