#pragma once

#include "device/AvailDevice.h"
#include "device/DeviceViews.h"

#include <QDateTime>
#include <QObject>
#include <functional>
#include <memory>

class AbstractDevice;
class TelnetDevice;

/// The range within which a channel is silent, both channels; a channel whose minimum equals its maximum never alarms.
struct AlarmRange
{
    float min1 = 0;
    float max1 = 0;
    float min2 = 0;
    float max2 = 0;
};
bool operator==(const AlarmRange &a, const AlarmRange &b);
bool operator!=(const AlarmRange &a, const AlarmRange &b);

/// One logger of the open project: its settings, its link, its newest readings, history and alarms.
class ConfiguredDevice : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    ConfiguredDevice(const QString &serialNumber, int interfaceKind, QObject *parent = nullptr);
    ~ConfiguredDevice() override;

    QString serialNumber() const;
    int interfaceKind() const;
    QString deviceName() const;
    QString ch1Name() const;
    QString ch2Name() const;
    QString address() const;
    quint16 port() const;
    /// Stores the five values and tells the link where to open next.
    void setDeviceInfo(const QString &name, const QString &ch1Name, const QString &ch2Name, const QString &address,
                       quint16 port);

    int ch1Unit() const;
    int ch2Unit() const;
    void setUnits(int unit1, int unit2);
    QString ch1CustomUnit() const;
    QString ch2CustomUnit() const;
    void setCustomUnits(const QString &text1, const QString &text2);

    /// The range and buzzer rule in force: what the alarm check uses and the project file keeps.
    AlarmRange alarmRange() const;
    void setAlarmRange(float min1, float max1, float min2, float max2);
    QString buzzerAlarm() const;
    void setBuzzerAlarm(const QString &rule);
    /// The range and rule that startSyncTelnet() sends to a network logger.
    AlarmRange pendingAlarmRange() const;
    void setPendingAlarmRange(float min1, float max1, float min2, float max2);
    QString pendingBuzzerAlarm() const;
    void setPendingBuzzerAlarm(const QString &rule);
    /// Makes the pending range and rule the ones in force.
    void applyPendingSettings();

    int dashboardNumber() const;
    void setDashboardNumber(int number);

    bool keepConnection() const;
    /// Network devices only; ignored for others.
    void setKeepConnection(bool keep);
    void setRecording(bool recording);
    bool isRecording() const;

    // Views are not owned; null detaches. A view must detach itself before it goes away.
    void setListItem(ListEntry *entry);
    void setChartView(LiveChart *chart);
    void setTiles(ChannelTile *channel1, ChannelTile *channel2);
    void detachViews();

    bool openDevice();
    void closeDevice();
    bool isOpen() const;
    /// Gives the link the address to open next; the configured address stays as it is.
    void setLinkAddress(const QString &address);

    /// Refreshes the newest value without recording it; reopens a closed serial link.
    void pollForDisplay();
    /// Asks for the reading of this moment, which is recorded while recording is on.
    void pollForRecord();

    bool isConnected() const;
    /// Newest value with two decimals, "----" as the device sent it, or empty when disconnected.
    QString ch1Value() const;
    QString ch2Value() const;
    bool alarmOnChannel1() const;
    bool alarmOnChannel2() const;
    /// Times are chartTime2() values; noValue where there is no sample yet.
    void history(History &times, History &channel1, History &channel2) const;
    /// Judges the values shown against the range in force, after that range was changed.
    void checkAlarmAll();
    /// Queues a row without values one second after the last recorded one, so that a chart shows a gap.
    void insertNoValue();

    /// Starts writing the pending range and rule into a network logger; polls rest until it has ended.
    void startSyncTelnet();
    void stopSyncTelnet();

    QDateTime pollTime() const;
    /// Replaces the source of the poll time.
    void setClock(Clock clock);

signals:
    void buzzerSyncSuccess();
    /// @p message is for the operator.
    void buzzerSyncError(const QString &message);

public slots:
    void readData(const QString &text);
    void deviceConnected();
    void deviceDisconnected();
    void slotWriteStartSync();
};
