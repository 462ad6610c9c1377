#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// A screen that nobody sees, and a hand on its mouse. Nothing is left of it when it goes.
class VirtualScreen
{
public:
    VirtualScreen() = default;
    ~VirtualScreen();
    VirtualScreen(const VirtualScreen &) = delete;
    VirtualScreen &operator=(const VirtualScreen &) = delete;

    bool start();
    /// For DISPLAY in the environment of programs.
    QString display() const { return m_display; }
    /// Clicks into the window of that title as soon as it is there. False when it does not come.
    bool click(const QString &title, int x, int y);

private:
    QByteArray runTool(const QStringList &arguments);

    QProcess m_server;
    QString m_display;
};
