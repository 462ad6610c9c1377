#pragma once

#include "app/StartOptions.h"

#include <QString>
#include <QThread>
#include <functional>
#include <memory>

class QApplication;
class QSplashScreen;

/// The version shown on the splash screen, in the main window and in the About box.
QString versionText();

/// Log lines are the bare message, so that they read as they are written.
void installMessagePattern();

/// Lets windows and pictures follow the density of their screen; to be called before the application object exists.
void enableHighDensity();

/// One type face throughout, in a substitute of its proportions where the system lacks it.
void useStationFont();

/// Shows the splash picture with its loading line.
std::unique_ptr<QSplashScreen> showSplash();

/// Builds the station, waits out the splash, shows the window and runs until it closes; returns the exit code. A
/// project file that is none is reported in the window, which then comes up without a project.
/// @p pause holds the program up for so many milliseconds while the splash is shown.
int runStation(QApplication &application, const StartOptions &options = {},
               const std::function<void(unsigned long ms)> &pause = QThread::msleep);
