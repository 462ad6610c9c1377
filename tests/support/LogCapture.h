#pragma once

#include <QLoggingCategory>
#include <QStringList>

/// Keeps the text of every diagnostic line of this program for one scope, with the station's categories switched on
/// whatever the environment says. One at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    /// How many lines begin with @p start.
    int count(const QString &start) const;
    /// Lines that the toolkit itself complained with: warnings and worse.
    QStringList warnings() const;
    void clear();

private:
    QtMessageHandler m_handlerBefore;
};
