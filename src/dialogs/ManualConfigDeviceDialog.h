#pragma once

#include "dialogs/ManualDeviceEntry.h"

#include <QDialog>
#include <QList>
#include <memory>

class ConfiguredDevice;
class QSpinBox;
class QTimer;

namespace Ui {
class ManualConfigDeviceDialog;
}

/// Adds a network logger by its addresses. Only a logger that answers its first poll is handed on; one that does not is
/// refused, and what was typed stays.
class ManualConfigDeviceDialog : public QDialog
{
    Q_OBJECT

public:
    /// How long a logger has to answer: the operator knows within three seconds.
    static constexpr int answerLimitMs = 2800;

    explicit ManualConfigDeviceDialog(QWidget *parent = nullptr);
    ~ManualConfigDeviceDialog() override;

    void done(int result) override;

signals:
    /// The receiver takes over @p device, whose link was opened. The dialog closes and deletes itself.
    void ManualConfigDeviceConfirm(ConfiguredDevice *device);

public slots:
    /// Checks what was typed and starts the test of the connection; returns at once.
    void confirm();
    void slotNextStep();
    void slotReject();

private:
    ManualDeviceEntry entered() const;
    QList<QSpinBox *> octets() const;
    QWidget *fieldOf(EntryRefusal::Field field) const;
    void startTest(const ManualDeviceEntry &entry);
    void checkAnswer();
    void endTest();
    void handOn();
    void refuse();

    std::unique_ptr<Ui::ManualConfigDeviceDialog> m_form;
    QList<QSpinBox *> m_steps;                  ///< the four octets, then the port
    std::unique_ptr<ConfiguredDevice> m_device; ///< under test
    QTimer *m_lookTimer;
    QTimer *m_limitTimer;
};
