#include "stationcosts/LoopWatch.h"

#include "store/InsertSerialData.h"

#include <QApplication>
#include <QDateTime>
#include <QSettings>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <ctime>
#include <glib.h>

namespace {

constexpr size_t longestKept = 30;
constexpr qint64 nsPerMs = 1000000;

LoopWatch *watch = nullptr;

qint64 nanoseconds(clockid_t clock)
{
    timespec time = {};
    ::clock_gettime(clock, &time);
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

/// The thread is only idle when nothing is ready: a poll that returns at once ends no stretch.
gint pollAndWatch(GPollFD *descriptors, guint count, gint timeoutMs)
{
    const gint ready = g_poll(descriptors, count, 0);
    if (ready != 0 || timeoutMs == 0 || !watch)
        return ready;
    watch->endStretch();
    const gint later = g_poll(descriptors, count, timeoutMs);
    watch->beginStretch();
    return later;
}

} // namespace

LoopWatch::LoopWatch(int settleMs, int measureMs)
    : m_measureFrom(now().wall + settleMs * nsPerMs), m_measureTo(m_measureFrom + measureMs * nsPerMs), m_begin(now())
{
    watch = this;
    // The toolkit's loop is the default context's; the dispatcher's own signals come around its whole turn.
    g_main_context_set_poll_func(nullptr, pollAndWatch);
}

LoopWatch::~LoopWatch()
{
    g_main_context_set_poll_func(nullptr, nullptr);
    watch = nullptr;
}

LoopWatch::Moment LoopWatch::now()
{
    return {nanoseconds(CLOCK_MONOTONIC), nanoseconds(CLOCK_THREAD_CPUTIME_ID)};
}

void LoopWatch::beginStretch()
{
    m_begin = now();
    m_hasFlushed = false;
}

void LoopWatch::endStretch()
{
    const Moment end = now();
    watchFlushes();
    if (end.wall > m_measureTo)
        return;
    Stretches &stretches = m_begin.wall < m_measureFrom ? m_start : m_hasFlushed ? m_flush : m_plain;
    const Moment length{end.wall - m_begin.wall, end.processor - m_begin.processor};
    stretches.wall.add(length.wall);
    stretches.processor.add(length.processor);
    if (m_begin.wall >= m_measureFrom)
        noteIfLong({m_begin, length, m_hasFlushed});
}

void LoopWatch::noteIfLong(const Long &stretch)
{
    const auto isLonger = [](const Long &a, const Long &b) {
        return a.length.wall > b.length.wall;
    };
    m_longest.insert(std::upper_bound(m_longest.begin(), m_longest.end(), stretch, isLonger), stretch);
    if (m_longest.size() > longestKept)
        m_longest.pop_back();
}

/// The controller tries to flush whenever its timer fires; an empty queue afterwards tells that it did.
void LoopWatch::watchFlushes()
{
    if (m_isWatchingFlushes)
        return;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        if (auto *timer = window->findChild<QTimer *>(QStringLiteral("writeDbTimer"))) {
            QObject::connect(timer, &QTimer::timeout, timer,
                             [this] { m_hasFlushed = m_hasFlushed || InsertSerialData::pendingCount() == 0; });
            m_isWatchingFlushes = true;
        }
    }
}

void LoopWatch::write(QSettings &file, const QString &name, const Stretches &stretches)
{
    constexpr double nearlyAll = 0.999;
    file.beginGroup(name);
    file.setValue(QStringLiteral("count"), stretches.wall.count());
    file.setValue(QStringLiteral("wallMax"), stretches.wall.maxMs());
    file.setValue(QStringLiteral("wallNearlyAll"), stretches.wall.percentileMs(nearlyAll));
    file.setValue(QStringLiteral("processorMax"), stretches.processor.maxMs());
    file.setValue(QStringLiteral("processorNearlyAll"), stretches.processor.percentileMs(nearlyAll));
    file.endGroup();
}

/// With the time of day, to be looked up in a log.
void LoopWatch::writeLongest(QSettings &file) const
{
    const QDateTime time = QDateTime::currentDateTime();
    const Moment moment = now();
    file.beginWriteArray(QStringLiteral("longest"), int(m_longest.size()));
    for (size_t i = 0; i < m_longest.size(); ++i) {
        const Long &stretch = m_longest.at(i);
        file.setArrayIndex(int(i));
        file.setValue(
            QStringLiteral("begin"),
            time.addMSecs((stretch.begin.wall - moment.wall) / nsPerMs).toString(QStringLiteral("hh:mm:ss.zzz")));
        file.setValue(QStringLiteral("wall"), double(stretch.length.wall) / double(nsPerMs));
        file.setValue(QStringLiteral("processor"), double(stretch.length.processor) / double(nsPerMs));
        file.setValue(QStringLiteral("hasFlushed"), stretch.hasFlushed);
    }
    file.endArray();
}

void LoopWatch::writeFigures(const QString &path) const
{
    QSettings file(path, QSettings::IniFormat);
    write(file, QStringLiteral("start"), m_start);
    write(file, QStringLiteral("plain"), m_plain);
    write(file, QStringLiteral("flush"), m_flush);
    writeLongest(file);
}
