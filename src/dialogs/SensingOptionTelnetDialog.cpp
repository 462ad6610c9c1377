#include "dialogs/SensingOptionTelnetDialog.h"

#include "dialogs/TransientMessage.h"
#include "ui_SensingOptionTelnetDialog.h"

#include <QTimer>

namespace {

constexpr int timeLimitMs = 2000;

} // namespace

SensingOptionTelnetDialog::SensingOptionTelnetDialog(ConfiguredDevice *device, QWidget *parent)
    : SensingOptionDialog(device, parent),
      m_ui(std::make_unique<Ui::SensingOptionTelnetDialog>()),
      m_timeLimit(new QTimer(this))
{
    m_ui->setupUi(this);
    showDevice(fieldsOf(*m_ui, m_ui->label_macaddr));
    showRule();
    m_timeLimit->setObjectName(QStringLiteral("timeLimit"));
    m_timeLimit->setSingleShot(true);
    connect(m_timeLimit, &QTimer::timeout, this, &SensingOptionTelnetDialog::syncTimeout);
    connect(device, &ConfiguredDevice::buzzerSyncSuccess, this, &SensingOptionTelnetDialog::syncSuccess);
    connect(device, &ConfiguredDevice::buzzerSyncError, this, &SensingOptionTelnetDialog::syncError);
    connect(this, &QDialog::finished, this, [this] { m_isClosed = true; });
}

SensingOptionTelnetDialog::~SensingOptionTelnetDialog()
{
    cancelOwnExchange();
}

void SensingOptionTelnetDialog::showRule()
{
    m_ui->comboBox_buzzeralarm->addItems({QStringLiteral("OFF"), QStringLiteral("CH1"), QStringLiteral("CH2"),
                                          QStringLiteral("OR"), QStringLiteral("AND")});
    m_ruleShown = m_ui->comboBox_buzzeralarm->findText(device()->buzzerAlarm(), Qt::MatchFixedString);
    m_ui->comboBox_buzzeralarm->setCurrentIndex(m_ruleShown);
    m_ui->comboBox_buzzeralarm->setEnabled(device()->isConnected());
}

QString SensingOptionTelnetDialog::editedRule() const
{
    const QComboBox *combo = m_ui->comboBox_buzzeralarm;
    return combo->currentIndex() == m_ruleShown ? device()->buzzerAlarm() : combo->currentText();
}

void SensingOptionTelnetDialog::confirm()
{
    if (!device() || !applyNamesAndUnits(device()->port()))
        return;
    m_timeLimit->stop();
    const QPointer<SensingOptionTelnetDialog> self(this);
    emit sensingConfirm();
    if (!self || !device())
        return;
    setProgressing(true);
    if (!handOverChanges()) {
        setProgressing(false);
        finish();
    } else if (device()->isConnected()) {
        startExchange();
    } else {
        report(QStringLiteral("Loss of network connection."));
    }
}

/// False when there is nothing that the logger must accept.
bool SensingOptionTelnetDialog::handOverChanges()
{
    const AlarmRange range = editedRange();
    const QString rule = editedRule();
    const bool isChanged = range != device()->alarmRange() || rule != device()->buzzerAlarm();
    // An exchange that a closed dialog has left under way still sends what is pending.
    if (isChanged || !device()->isExchangeRunning()) {
        device()->setPendingAlarmRange(range.min1, range.max1, range.min2, range.max2);
        device()->setPendingBuzzerAlarm(rule);
    }
    return isChanged;
}

void SensingOptionTelnetDialog::startExchange()
{
    device()->startSyncTelnet();
    m_exchange = device()->exchangeNumber();
    m_timeLimit->start(timeLimitMs);
}

bool SensingOptionTelnetDialog::isExchanging() const
{
    return device() && m_exchange == device()->exchangeNumber();
}

void SensingOptionTelnetDialog::cancelOwnExchange()
{
    if (isExchanging())
        device()->stopSyncTelnet();
    m_exchange.reset();
}

void SensingOptionTelnetDialog::syncSuccess()
{
    if (!isExchanging())
        return;
    m_exchange.reset();
    m_timeLimit->stop();
    device()->applyPendingSettings();
    const QPointer<SensingOptionTelnetDialog> self(this);
    emit sensingConfirm();
    if (!self)
        return;
    setProgressing(false);
    finish();
}

void SensingOptionTelnetDialog::syncError(const QString &message)
{
    if (!isExchanging())
        return;
    m_exchange.reset();
    setProgressing(false);
    report(message);
}

void SensingOptionTelnetDialog::syncTimeout()
{
    if (m_isClosed && !isExchanging()) {
        deleteLater(); // a later dialog has taken the exchange over, and tells what it comes to
        return;
    }
    cancelOwnExchange();
    setProgressing(false);
    report(QStringLiteral("This command has exceeded the time limit."));
}

void SensingOptionTelnetDialog::slotReject()
{
    cancelOwnExchange();
    SensingOptionDialog::slotReject();
}

void SensingOptionTelnetDialog::setProgressing(bool on)
{
    m_ui->pushButton_confirm->setText(on ? QStringLiteral("Progressing...") : QStringLiteral("Confirm"));
    setNamesAndUnitsEnabled(!on);
    if (!device() || !device()->isConnected())
        return;
    setLimitsEnabled(!on);
    m_ui->comboBox_buzzeralarm->setEnabled(!on);
}

void SensingOptionTelnetDialog::report(const QString &text)
{
    const QString message = text + QStringLiteral("\nPlease retry.");
    if (!m_isClosed) {
        showTransientMessage(QStringLiteral("ERROR"), message, this);
        return;
    }
    // Out of nowhere it must say which logger it is about.
    if (device())
        showTransientMessage(QStringLiteral("ERROR"), device()->deviceName() + QStringLiteral(": ") + message,
                             parentWidget());
    deleteLater();
}
