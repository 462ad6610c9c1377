#pragma once

#include <QDialog>
#include <memory>

class ConfiguredDevice;

namespace Ui {
class NetworkSettingDialog;
}

/// Shows where a network logger is reached. Its button deletes it; closing it any other way only hides it.
class NetworkSettingDialog : public QDialog
{
    Q_OBJECT

public:
    NetworkSettingDialog(const ConfiguredDevice *device, QWidget *parent);
    ~NetworkSettingDialog() override;

public slots:
    /// Stands in for the widget's own close(), which does not delete.
    void close();
    void slotReject();

private:
    std::unique_ptr<Ui::NetworkSettingDialog> m_ui;
};
