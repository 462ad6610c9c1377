#pragma once

#include <QMap>
#include <QStringList>

// What an operator does in most tests. False when a step of it was not possible.

/// Types a name into the dialog of "Create Project".
bool createProjectFile(const QString &name);
/// Puts the found loggers whose rows begin so on a dashboard, from 0.
bool placeOnDashboard(int dashboard, const QStringList &keys);
bool chooseInterval(const QString &text);
/// From the start screen to the open project, with one dashboard and readings every second; waits until every logger
/// has been found.
bool createProject(const QString &name, const QStringList &keys);
/// From the dashboards or a chart to the chart of that logger in the list.
bool openChart(const QString &device);
/// From the chart of a logger to its options.
bool openOptions(const QString &device);
/// From the start screen to the open project.
bool openRecent(const QString &name);
/// Ends the station from its menu.
bool exitStation();
