#pragma once

#include "device/DeviceViews.h"
#include "views/ChannelChart.h"
#include "views/StateBackground.h"

#include <QMouseEvent>
#include <QPixmap>
#include <QPointer>
#include <QWidget>
#include <array>
#include <memory>

class ConfiguredDevice;
class ElidedLabel;
class QChartViewer;
class QChartViewerLabel;
class QFrame;
class ResizeLabel;

namespace Ui {
class ChartView;
}

/// One device in detail: its state, names and values, and the live chart of either channel. The device is not owned,
/// and attached or detached by whoever shows this view.
class ChartView : public QWidget, public LiveChart
{
    Q_OBJECT

public:
    explicit ChartView(QWidget *parent = nullptr);
    ~ChartView() override;

    /// Shows a device with what it knows by now; null is ignored.
    void setDevice(ConfiguredDevice *device);
    /// Forgets the device and shows nothing.
    void clear();
    /// Reads names, identifier and units again.
    void refreshHeader();

    // Notices about another device are ignored, data while there is none.
    void setConnected(const QString &serialNumber) override;
    void setDisconnected(const QString &serialNumber) override;
    void updateData(const History &times, const History &channel1, const History &channel2, const QString &text1,
                    const QString &text2) override;

public slots:
    void drawChart();
    void drawChart2();
    /// Has both charts drawn anew.
    void updateChart();
    void onMouseMovePlotArea(QMouseEvent *event);
    void onMouseMovePlotArea2(QMouseEvent *event);
    void slotPopupSensingOption();
    void slotPopupNetwork();

signals:
    void popupSensingOption();
    void popupNetworkSetting();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    enum Picture { ConnectedPicture, ConnectingPicture, DisconnectedPicture, PictureCount };

    /// What is shown of one channel.
    struct Channel
    {
        ChannelLine line;
        QFrame *valueFrame = nullptr;
        ElidedLabel *deviceLabel = nullptr;
        ElidedLabel *nameLabel = nullptr;
        ResizeLabel *valueLabel = nullptr;
        ResizeLabel *unitLabel = nullptr;
        QChartViewerLabel *chartLabel = nullptr;
        QChartViewer *viewer = nullptr;
        std::unique_ptr<chart::XYChart> picture;
        History values{};
        QString unitText;
        StateBackground background = StateBackground::NoData;
    };

    void assembleChannels();
    void connectChannels();
    bool isOwn(const QString &serialNumber) const;
    void applyConnectionState(bool connected);
    void blankValues();

    void showValue(Channel &channel, const QString &text);
    void showUnit(Channel &channel);
    void refreshValue(Channel &channel, bool alarm);
    void decideBackground(Channel &channel, StateBackground background);
    void applyBackgrounds();

    void draw(Channel &channel);
    void moveCursor(Channel &channel);

    std::unique_ptr<Ui::ChartView> m_form;
    std::array<QPixmap, PictureCount> m_pictures;
    QPointer<ConfiguredDevice> m_device;
    History m_times{};
    History m_intervals{};
    std::array<Channel, 2> m_channels;
    bool m_backgroundsPending = false;
};
