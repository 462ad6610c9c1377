#pragma once

#include "DialogParts.h"
#include "dialogs/SensingOptionTelnetDialog.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QTest>

/// Two seconds of the dialog's, on a machine that may be busy with other things.
constexpr int patienceMs = 20000;

/// A connected logger with the range 10 to 30 and the rule "OFF"; it acknowledges every command.
struct Cellar
{
    TemporaryInterval interval;
    ScriptedLogger logger;
    std::unique_ptr<ConfiguredDevice> device = std::make_unique<ConfiguredDevice>("A1B2C3D4E5F6", NetworkInterface);
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();

    explicit Cellar(int intervalMs = 10000) : interval(intervalMs)
    {
        logger.setReply("OK\r\n");
        device->setDeviceInfo("Cellar", "Air", "Damp", logger.address(), logger.port());
        device->setAlarmRange(10, 30, 0, 0);
        device->deviceConnected();
    }

    QPointer<SensingOptionTelnetDialog> open()
    {
        auto *dialog = new SensingOptionTelnetDialog(device.get(), window.get());
        dialog->show();
        return dialog;
    }

    /// The exchange is over and its link is a link for polls again.
    bool isPolledAgain()
    {
        logger.setReply("ATDC 21.50,45.10\r\n");
        device->pollForRecord();
        return QTest::qWaitFor([this] { return device->ch1Value() == QLatin1String("21.50"); });
    }
};

inline QList<QByteArray> commandsFor(const QByteArray &min1, const QByteArray &rule = "OFF")
{
    return {"ATBMIN1 " + min1, "ATBMAX1 30.00", "ATBMIN2 0.00", "ATBMAX2 0.00", "ATBAL " + rule, "ATBSET"};
}

inline QDoubleSpinBox &min1(QWidget *dialog)
{
    return part<QDoubleSpinBox>(dialog, "doubleSpinBox_min_ch1");
}

inline QComboBox &rule(QWidget *dialog)
{
    return part<QComboBox>(dialog, "comboBox_buzzeralarm");
}

inline QPushButton &button(QWidget *dialog)
{
    return part<QPushButton>(dialog, "pushButton_confirm");
}

inline void confirmMin1(QWidget *dialog, double value)
{
    min1(dialog).setValue(value);
    button(dialog).click();
}
