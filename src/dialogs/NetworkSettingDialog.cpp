#include "dialogs/NetworkSettingDialog.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/SharpPixmap.h"
#include "ui_NetworkSettingDialog.h"

NetworkSettingDialog::NetworkSettingDialog(const ConfiguredDevice *device, QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::NetworkSettingDialog>())
{
    m_ui->setupUi(this);
    m_ui->label_top_logo->setPixmap(sharpPixmap(QStringLiteral(":/img/SorvantoLogoLite.png")));
    m_ui->label_ipaddr->setText(device->address());
    m_ui->label_port->setText(QString::number(device->port()));
    connect(m_ui->pushButton_close, &QPushButton::clicked, this, &NetworkSettingDialog::close);
}

NetworkSettingDialog::~NetworkSettingDialog() = default;

void NetworkSettingDialog::close()
{
    reject();
    deleteLater();
}

void NetworkSettingDialog::slotReject()
{
    close();
}
