#pragma once

#include "chart/NoValue.h"
#include "chart/QChartViewer.h"
#include "chart/XYChart.h"
#include "support/ClockedDevice.h"
#include "support/TemporaryInterval.h"
#include "views/ChartView.h"

#include <QLabel>
#include <QTest>

/// A chart view and a network device that it does not show yet; every update is shown at once, and mouse moves go by a
/// clock of the test's.
class ChartViewFixture
{
public:
    ChartViewFixture()
    {
        device().setDeviceInfo("Cold room", "Air", "Damp", "10.0.0.7", 23);
        device().setUnits(1, 3);
        device().setAlarmRange(2, 8, 0, 0);
        for (const int channel : {0, 1}) {
            viewer(channel)->setUpdateInterval(0);
            viewer(channel)->setClock([this] { return m_now; });
        }
    }
    ~ChartViewFixture() { device().detachViews(); }

    ConfiguredDevice &device() { return m_clocked.device; }
    /// A reading ten seconds after the one before, or later.
    void reply(const QString &text, int msLater = 10000) { m_clocked.reply(text, msLater); }
    void attach()
    {
        view.setDevice(&device());
        device().setChartView(&view);
    }
    void showReading(const QString &text)
    {
        attach();
        reply(text);
    }
    void fillHistory()
    {
        attach();
        for (int i = 0; i < historyLength; ++i)
            reply(QStringLiteral("%1.50,45.10").arg(i % 9));
    }

    void show(const QSize &size)
    {
        view.resize(size);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
    }
    QWidget *widget(const char *name) const { return view.findChild<QWidget *>(QLatin1String(name)); }
    QLabel *label(const char *name) const { return view.findChild<QLabel *>(QLatin1String(name)); }
    /// Channels are numbered from 0.
    QChartViewer *viewer(int channel) const
    {
        return widget(channel == 0 ? "label_ch1_chart" : "label_ch2_chart")->findChild<QChartViewer *>();
    }
    double newestShown(int channel) const
    {
        const auto &layers = viewer(channel)->chart()->layers();
        return layers.empty() ? chart::noValue : layers.front()->dataSets().front()->values.back();
    }

    static QImage imageOf(const QLabel *label) { return label->pixmap(Qt::ReturnByValue).toImage(); }
    /// Whether a label shows a picture of the resources, at whatever density the screen asks for.
    bool shows(const char *labelName, const char *picture) const
    {
        const QString base = QStringLiteral(":/img/") + QLatin1String(picture);
        const QImage image = imageOf(label(labelName));
        return !image.isNull() &&
               (image == QPixmap(base + ".png").toImage() || image == QPixmap(base + "@2x.png").toImage());
    }

    void moveTo(int channel, const QPoint &position)
    {
        m_now += 300;
        QMouseEvent event(QEvent::MouseMove, position, position, viewer(channel)->mapToGlobal(position), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewer(channel), &event);
    }

private:
    const TemporaryInterval m_interval{10000};
    qint64 m_now = 0;
    ClockedDevice m_clocked;

public:
    ChartView view;
};
