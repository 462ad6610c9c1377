#include "app/OpeningProgress.h"

#include <QCoreApplication>
#include <QProgressDialog>
#include <QString>
#include <utility>

namespace {

const QString savingText = QStringLiteral("The recording was cut off. Saving its readings...");

} // namespace

OpeningProgress::OpeningProgress(QWidget *window, const ShowText &onSplash) : m_window(window), m_onSplash(onSplash) {}

OpeningProgress::~OpeningProgress() = default;

void OpeningProgress::show(quint32 done, quint32 all)
{
    const int percent = all == 0 ? 0 : int(quint64(done) * 100 / all);
    const bool isNews = std::exchange(m_percent, percent) != percent;
    if (m_onSplash) {
        if (isNews)
            m_onSplash(QStringLiteral("%1 %2 %").arg(savingText).arg(percent));
        return;
    }
    if (!m_box) {
        m_box = std::make_unique<QProgressDialog>(savingText, QString(), 0, 100, m_window);
        m_box->setMinimumDuration(0);
    }
    m_box->setValue(percent);
    // Windows that answer nothing look dead; loggers, and whoever wants to end the program, wait.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}
