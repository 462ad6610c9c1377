#pragma once

#include "dialogs/SensingOptionDialog.h"

#include <memory>

namespace Ui {
class SensingOptionUsbDialog;
}

/// Edits a USB logger: what the operator confirms is in force at once.
class SensingOptionUsbDialog : public SensingOptionDialog
{
    Q_OBJECT

public:
    SensingOptionUsbDialog(ConfiguredDevice *device, QWidget *parent);
    ~SensingOptionUsbDialog() override;

public slots:
    void confirm() override;

private:
    std::unique_ptr<Ui::SensingOptionUsbDialog> m_ui;
};
