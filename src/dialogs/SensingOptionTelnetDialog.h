#pragma once

#include "dialogs/SensingOptionDialog.h"

#include <memory>
#include <optional>

class QTimer;

namespace Ui {
class SensingOptionTelnetDialog;
}

/// Edits a network logger: names and units are in force at once, alarm ranges and the buzzer rule when the logger has
/// accepted them. Closing the window leaves an exchange with the logger under way; its failure is then reported in the
/// parent, with the logger's name. Deleting the dialog cancels it.
class SensingOptionTelnetDialog : public SensingOptionDialog
{
    Q_OBJECT

public:
    SensingOptionTelnetDialog(ConfiguredDevice *device, QWidget *parent);
    ~SensingOptionTelnetDialog() override;

    bool isExchanging() const final;

public slots:
    void confirm() override;
    void slotReject() override;
    // Reports of exchanges that another dialog has started are ignored.
    void syncSuccess();
    void syncError(const QString &message);
    void syncTimeout();

private:
    void showRule();
    QString editedRule() const;
    bool handOverChanges();
    void startExchange();
    void cancelOwnExchange();
    void setProgressing(bool on);
    void report(const QString &text);

    std::unique_ptr<Ui::SensingOptionTelnetDialog> m_ui;
    int m_ruleShown = -1;
    QTimer *m_timeLimit;
    /// The device's number of the exchange whose end this dialog awaits.
    std::optional<int> m_exchange;
    bool m_isClosed = false;
};
