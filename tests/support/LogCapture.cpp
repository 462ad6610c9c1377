#include "support/LogCapture.h"

#include <algorithm>

namespace {

QStringList capturedLines;
QStringList capturedWarnings;
QLoggingCategory::CategoryFilter filterBefore = nullptr;

void keepLine(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    capturedLines << text;
    if (type != QtDebugMsg && type != QtInfoMsg)
        capturedWarnings << text;
}

void enableStation(QLoggingCategory *category)
{
    if (filterBefore)
        filterBefore(category);
    if (QByteArray(category->categoryName()).startsWith("sorvanto."))
        category->setEnabled(QtDebugMsg, true);
}

} // namespace

LogCapture::LogCapture()
{
    clear();
    filterBefore = QLoggingCategory::installFilter(nullptr);
    QLoggingCategory::installFilter(enableStation);
    m_handlerBefore = qInstallMessageHandler(keepLine);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_handlerBefore);
    QLoggingCategory::installFilter(filterBefore);
}

QStringList LogCapture::lines() const
{
    return capturedLines;
}

int LogCapture::count(const QString &start) const
{
    return static_cast<int>(std::count_if(capturedLines.cbegin(), capturedLines.cend(),
                                          [&start](const QString &line) { return line.startsWith(start); }));
}

QStringList LogCapture::warnings() const
{
    return capturedWarnings;
}

void LogCapture::clear()
{
    capturedLines.clear();
    capturedWarnings.clear();
}
