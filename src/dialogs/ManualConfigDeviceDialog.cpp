#include "dialogs/ManualConfigDeviceDialog.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/Logging.h"
#include "dialogs/SharpPixmap.h"
#include "dialogs/TransientMessage.h"
#include "ui_ManualConfigDeviceDialog.h"

#include <QStringList>
#include <QTimer>

namespace {

constexpr int lookMs = 50;

void beginAnew(QWidget *field)
{
    field->setFocus(Qt::OtherFocusReason);
    if (auto *box = qobject_cast<QSpinBox *>(field))
        box->selectAll();
}

} // namespace

ManualConfigDeviceDialog::ManualConfigDeviceDialog(QWidget *parent)
    : QDialog(parent),
      m_form(std::make_unique<Ui::ManualConfigDeviceDialog>()),
      m_lookTimer(new QTimer(this)),
      m_limitTimer(new QTimer(this))
{
    m_form->setupUi(this);
    m_form->label_top->setPixmap(sharpPixmap(QStringLiteral(":/img/SorvantoLogoLite.png")));
    for (IpaddrSpinBox *octet :
         {m_form->spinBox_ipaddr1, m_form->spinBox_ipaddr2, m_form->spinBox_ipaddr3, m_form->spinBox_ipaddr4}) {
        m_steps.append(octet);
        connect(octet, &IpaddrSpinBox::nextStep, this, &ManualConfigDeviceDialog::slotNextStep);
    }
    m_steps.append(m_form->spinBox_port);
    m_form->lineEdit_devicename->setFocus();
    m_lookTimer->setInterval(lookMs);
    connect(m_lookTimer, &QTimer::timeout, this, &ManualConfigDeviceDialog::checkAnswer);
    m_limitTimer->setObjectName(QStringLiteral("answerLimit"));
    m_limitTimer->setSingleShot(true);
    m_limitTimer->setTimerType(Qt::PreciseTimer);
    m_limitTimer->setInterval(answerLimitMs);
    connect(m_limitTimer, &QTimer::timeout, this, &ManualConfigDeviceDialog::refuse);
    connect(m_form->pushButton_confirm, &QPushButton::clicked, this, &ManualConfigDeviceDialog::confirm);
}

ManualConfigDeviceDialog::~ManualConfigDeviceDialog() = default;

void ManualConfigDeviceDialog::confirm()
{
    if (m_device)
        return;
    const ManualDeviceEntry entry = entered();
    if (const auto refusal = refusalOf(entry)) {
        beginAnew(fieldOf(refusal->field));
        showTransientMessage(refusal->title, refusal->text, this);
    } else {
        startTest(entry);
    }
}

/// Where the cursor goes for the operator to try again.
QWidget *ManualConfigDeviceDialog::fieldOf(EntryRefusal::Field field) const
{
    switch (field) {
    case EntryRefusal::Field::Name:
        return m_form->lineEdit_devicename;
    case EntryRefusal::Field::Key:
        return m_form->lineEdit_macaddr;
    case EntryRefusal::Field::Address:
        for (QSpinBox *octet : octets()) {
            if (!octet->hasAcceptableInput())
                return octet;
        }
        return m_steps.first();
    case EntryRefusal::Field::Port:
        return m_form->spinBox_port;
    }
    return nullptr;
}

void ManualConfigDeviceDialog::slotNextStep()
{
    const auto next = m_steps.indexOf(qobject_cast<QSpinBox *>(sender())) + 1;
    if (next == 0 || next == m_steps.size())
        return;
    beginAnew(m_steps.at(next));
}

void ManualConfigDeviceDialog::slotReject()
{
    reject();
    deleteLater();
}

void ManualConfigDeviceDialog::done(int result)
{
    endTest();
    m_device.reset();
    QDialog::done(result);
}

ManualDeviceEntry ManualConfigDeviceDialog::entered() const
{
    QStringList numbers;
    for (const QSpinBox *octet : octets()) {
        if (octet->hasAcceptableInput())
            numbers.append(QString::number(octet->value()));
    }
    const QSpinBox *port = m_form->spinBox_port;
    return {m_form->lineEdit_devicename->text(), m_form->lineEdit_macaddr->text().remove(QLatin1Char(':')),
            numbers.size() == octets().size() ? numbers.join(QLatin1Char('.')) : QString(),
            static_cast<quint16>(port->hasAcceptableInput() ? port->value() : 0)};
}

QList<QSpinBox *> ManualConfigDeviceDialog::octets() const
{
    return m_steps.mid(0, 4);
}

/// The link only tells that it has begun to connect, so a logger counts as open once it has answered the poll that its
/// link sends on every new connection.
void ManualConfigDeviceDialog::startTest(const ManualDeviceEntry &entry)
{
    m_device = std::make_unique<ConfiguredDevice>(entry.key, NetworkInterface);
    m_device->setDeviceInfo(entry.name, QStringLiteral("CH1"), QStringLiteral("CH2"), entry.address, entry.port);
    if (!m_device->openDevice()) {
        refuse();
        return;
    }
    m_form->groupBox_network->setEnabled(false);
    m_form->pushButton_confirm->setEnabled(false);
    setCursor(Qt::BusyCursor);
    m_lookTimer->start();
    m_limitTimer->start();
}

void ManualConfigDeviceDialog::checkAnswer()
{
    if (m_device->isConnected())
        handOn();
}

void ManualConfigDeviceDialog::endTest()
{
    m_lookTimer->stop();
    m_limitTimer->stop();
    m_form->groupBox_network->setEnabled(true);
    m_form->pushButton_confirm->setEnabled(true);
    unsetCursor();
}

void ManualConfigDeviceDialog::handOn()
{
    endTest();
    emit ManualConfigDeviceConfirm(m_device.release());
    accept();
    deleteLater();
}

void ManualConfigDeviceDialog::refuse()
{
    endTest();
    m_form->pushButton_confirm->setFocus();
    showTransientMessage(QStringLiteral("ERROR"), QStringLiteral("Device Open Error. Please retry."), this);
    logDialogs() << "ManualConfigDeviceDialog::confirm [" << m_device->serialNumber() << "] is not open";
    m_device.reset();
}
