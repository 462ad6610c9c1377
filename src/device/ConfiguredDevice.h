#pragma once

#include "device/AlarmExchange.h"
#include "device/AttachedViews.h"
#include "device/ChannelAlarms.h"
#include "device/ChannelHistory.h"
#include "device/DeviceSettings.h"
#include "device/LoggerConversation.h"
#include "device/RecordedSeries.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

class AbstractDevice;
class DeviceWitness;
class TelnetDevice;
enum class LossReason;
struct Reading;

/// One logger of the open project: joins its settings, its link, its newest readings with their history and alarms, its
/// part of the recording and the exchange of alarm settings with it.
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
    /// Whether a reading that is to be recorded may be on its way.
    bool awaitsReading() const;

    // Views are not owned; null detaches. A view must detach itself before it goes away.
    void setListItem(ListEntry *entry);
    void setChartView(LiveChart *chart);
    void setTiles(ChannelTile *channel1, ChannelTile *channel2);
    void detachViews();
    /// Not owned either; must outlive the device or be taken off with null, and never deletes it.
    void setWitness(DeviceWitness *witness);

    /// Opens the link at the configured address; a reading that releasePort() has cut short is asked for again.
    bool openDevice();
    /// Closes the link and shows the logger as disconnected.
    void closeDevice();
    bool isOpen() const;
    /// Closes the link for the moment until openDevice(): what is known of the logger stays.
    void releasePort();
    /// Closes the link and leaves it nothing to open until openDevice(): the port of a logger that was unplugged may be
    /// another logger's by now. The configured address stays as it is.
    void forgetPort();

    /// Whether a USB logger that gave no more answers has its port closed until it is polled the next time.
    bool opensWithNextPoll() const;

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
    /// The data interval that was in force at each of these samples, in milliseconds.
    const History &historyIntervals() const;
    /// Judges the values shown against the range in force, after that range was changed.
    void checkAlarmAll();
    /// Queues a row without values one second after the last recorded one, so that a chart shows a gap; nothing when
    /// there is no reading since the last such row.
    void insertNoValue();

    /// Starts writing the pending range and rule into a network logger; polls rest until it has ended. A reply that the
    /// logger owes is awaited first, for a second at most.
    void startSyncTelnet();
    void stopSyncTelnet();
    bool isExchangeRunning() const;
    /// How many exchanges were started so far: tells whether the one that runs, or ran last, is still one's own.
    int exchangeNumber() const;

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

private:
    bool restsFromPolling() const;
    bool sendPoll(const LoggerConversation::Poll &poll);
    void askPostponedPoll();
    bool openLinkForPoll();
    void countMissedReply();
    void giveUpSilentLink(int missedLimit);
    void stampPollTime();

    void takeReadings(const QString &text);
    void showReading(const Reading &reading);
    void keepTimedReadings();
    void judgeAlarms(double value1, double value2);
    void tellAlarms(const ChannelAlarms &before, double value1, double value2);
    void closeFor(LossReason reason);
    void lose(LossReason reason);
    void tellExchangeFailed(const QString &reason);

    void beginExchange();
    void beginExchangeIfNothingIsOwed();
    void takeExchangeText(QString text);
    void takeExchangeReply(const QString &reply);
    bool sendExchangeCommand();
    void endExchange(const std::function<void()> &report, const char *logText, const QString &reply);
    void releaseLinkFromExchange();
    bool closesAfterExchange() const;

    const QString m_serialNumber;
    const int m_interfaceKind;
    const LinkKind &m_kind;
    DeviceSettings m_settings;

    Clock m_clock;
    QDateTime m_pollTime;
    qint64 m_pollMs = 0; ///< m_pollTime since the epoch; time zones make that conversion too dear for every reading

    LoggerConversation m_conversation;
    /// To be sent when the link is free for it again.
    std::optional<LoggerConversation::Poll> m_postponedPoll;
    std::unique_ptr<AbstractDevice> m_link;
    /// The link of a network logger: what only such a link can do is asked of this pointer, not of the kind.
    TelnetDevice *m_telnet = nullptr;
    bool m_connected = false;
    int m_missedReplies = 0;
    int m_unansweredPolls = 0; ///< on the connection that stands
    bool m_opensWithNextPoll = false;
    bool m_isPortForgotten = false;

    QString m_ch1Value;
    QString m_ch2Value;
    ChannelHistory m_history;
    ChannelAlarms m_alarms;
    AttachedViews m_views;
    DeviceWitness *m_witness = nullptr;
    bool m_recording = false;
    RecordedSeries m_series;

    AlarmExchange m_exchange;
    QTimer m_owedReplyTimer; ///< runs while a started exchange lets an earlier reply come in first
};
