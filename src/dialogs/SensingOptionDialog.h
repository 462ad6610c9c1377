#pragma once

#include "device/ConfiguredDevice.h"

#include <QDialog>
#include <QPointer>
#include <array>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// What the option dialogs of all kinds of logger have in common: the logger's name, its channels' names, units and
/// alarm ranges. A dialog that has done its work deletes itself; one that is closed by its window is only hidden. It
/// goes when its device goes.
class SensingOptionDialog : public QDialog
{
    Q_OBJECT

public:
    /// Whether the end of an exchange with the logger, started here, is still awaited.
    virtual bool isExchanging() const { return false; }

signals:
    /// The device's settings were changed: views must refresh.
    void sensingConfirm();

public slots:
    virtual void confirm() = 0;
    /// The unit list that sent the signal takes a text of the operator's own while "Custom" is chosen.
    void checkCustomUnitPolicy(int index);
    virtual void slotReject();

protected:
    struct Fields
    {
        QLabel *logo;
        QLabel *key;
        QLineEdit *deviceName;
        std::array<QLineEdit *, 2> channelNames;
        std::array<QComboBox *, 2> units;
        std::array<QDoubleSpinBox *, 4> limits; ///< minimum 1, maximum 1, minimum 2, maximum 2
        QPushButton *confirm;
    };
    /// The fields of a form, which all kinds of logger name alike but for the key.
    template <typename Form>
    static Fields fieldsOf(const Form &form, QLabel *key);

    SensingOptionDialog(ConfiguredDevice *device, QWidget *parent);

    /// Connects the fields and shows the device in them; to be called once.
    void showDevice(const Fields &fields);
    /// Null once the device is gone.
    ConfiguredDevice *device() const;
    /// False, with a message to the operator, when a name is missing or a limit is no number; nothing is changed then.
    bool applyNamesAndUnits(quint16 port);
    /// The device's range with the limits that the operator has changed.
    AlarmRange editedRange() const;
    void setNamesAndUnitsEnabled(bool on);
    void setLimitsEnabled(bool on);
    /// Accepts and deletes the dialog.
    void finish();

private:
    void showUnit(QComboBox *combo, int code, const QString &customText);
    void showLimits();
    QString missingName() const;
    bool refusesALimit();
    static int unitCode(const QComboBox *combo);
    static QString customUnit(const QComboBox *combo, const QString &stored);

    const QPointer<ConfiguredDevice> m_device;
    Fields m_fields{};
    std::array<double, 4> m_limitsShown{};
};

template <typename Form>
SensingOptionDialog::Fields SensingOptionDialog::fieldsOf(const Form &form, QLabel *key)
{
    return {form.label_top_logo,
            key,
            form.lineEdit_devicename,
            {form.lineEdit_ch1name, form.lineEdit_ch2name},
            {form.comboBox_unit_ch1, form.comboBox_unit_ch2},
            {form.doubleSpinBox_min_ch1, form.doubleSpinBox_max_ch1, form.doubleSpinBox_min_ch2,
             form.doubleSpinBox_max_ch2},
            form.pushButton_confirm};
}
