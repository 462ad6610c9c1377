#pragma once

#include "device/DeviceViews.h"
#include "views/StateBackground.h"

#include <QPointer>
#include <QWidget>
#include <memory>

class ConfiguredDevice;
class QFrame;

namespace Ui {
class DashBoardDeviceItem;
}

/// A dashboard tile: one channel of one device with its newest value, on a background that tells its state.
/// The device is not owned and may be gone before the tile.
class DashBoardDeviceItem : public QWidget, public ChannelTile
{
    Q_OBJECT

public:
    enum class Channel { One, Two };

    /// Without a device the tile looks like an empty cell.
    DashBoardDeviceItem(ConfiguredDevice *device, Channel channel, QWidget *parent = nullptr);
    ~DashBoardDeviceItem() override;

    // Notices about a device other than the tile's change nothing. Backgrounds change at the next turn of the event
    // loop.
    void setConnected(const QString &serialNumber) override;
    void setDisconnected(const QString &serialNumber) override;
    void setValue(const QString &text) override;
    void setAlarm(bool alarm);
    /// Reads names and unit again after the device's options were changed.
    void refresh();

signals:
    /// By any mouse button, or by the keyboard.
    void clicked(ConfiguredDevice *device);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    bool isOwn(const QString &serialNumber) const;
    bool deviceAlarm() const;
    void readNames();
    void readUnit();
    void presizeFonts();
    void showUnit();
    void decideBackground(StateBackground background);
    void applyBackground();
    void open();

    std::unique_ptr<Ui::DashBoardDeviceItem> m_form;
    QPointer<ConfiguredDevice> m_device;
    const Channel m_channel;
    QString m_unitText;
    StateBackground m_background = StateBackground::NoData;
    bool m_backgroundPending = false;
    QFrame *m_focusRing = nullptr;
};
