#include "dialogs/SensingOptionUsbDialog.h"

#include "ui_SensingOptionUsbDialog.h"

SensingOptionUsbDialog::SensingOptionUsbDialog(ConfiguredDevice *device, QWidget *parent)
    : SensingOptionDialog(device, parent), m_ui(std::make_unique<Ui::SensingOptionUsbDialog>())
{
    m_ui->setupUi(this);
    showDevice(fieldsOf(*m_ui, m_ui->label_serialnumber));
}

SensingOptionUsbDialog::~SensingOptionUsbDialog() = default;

void SensingOptionUsbDialog::confirm()
{
    if (!device() || !applyNamesAndUnits(defaultDevicePort))
        return;
    const AlarmRange range = editedRange();
    device()->setAlarmRange(range.min1, range.max1, range.min2, range.max2);
    const QPointer<SensingOptionUsbDialog> self(this);
    emit sensingConfirm();
    if (self)
        finish();
}
