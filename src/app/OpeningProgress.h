#pragma once

#include <QtGlobal>
#include <functional>
#include <memory>

class QProgressDialog;
class QString;
class QWidget;

/// Tells the operator how far the readings of a torn recording are saved: on the splash while the station is built, in
/// a box that is gone with this object when there is a window.
class OpeningProgress
{
public:
    using ShowText = std::function<void(const QString &text)>;

    /// @p onSplash is null when there is none.
    OpeningProgress(QWidget *window, const ShowText &onSplash);
    ~OpeningProgress();

    /// Keeps the windows alive meanwhile; nothing but them is looked after.
    void show(quint32 done, quint32 all);

private:
    QWidget *const m_window;
    const ShowText m_onSplash;
    std::unique_ptr<QProgressDialog> m_box;
    int m_percent = -1;
};
