#include "views/DashBoardDeviceItem.h"

#include "device/ChannelUnit.h"
#include "device/ConfiguredDevice.h"
#include "dialogs/PlainToolTip.h"
#include "ui_DashBoardDeviceItem.h"
#include "views/WindowIcon.h"

#include <QKeyEvent>

DashBoardDeviceItem::DashBoardDeviceItem(ConfiguredDevice *device, Channel channel, QWidget *parent)
    : QWidget(parent), m_form(std::make_unique<Ui::DashBoardDeviceItem>()), m_device(device), m_channel(channel)
{
    m_form->setupUi(this);
    // Not in the form: its parts would look at the gradient in vain before they have their own styles.
    showBackground(m_form->frame_value, m_background);
    ensureWindowIcon(this);
    if (!m_device) {
        m_form->frame_ch->hide();
        return;
    }
    setMinimumSize(m_form->frame_ch->minimumSize());
    // Its parts cover the tile: nothing behind it needs painting with every value.
    setAttribute(Qt::WA_OpaquePaintEvent);
    // Both tiles lead to the same chart: one stop of the keyboard is enough.
    if (m_channel == Channel::One)
        setFocusPolicy(Qt::TabFocus);
    readNames();
    readUnit();
    presizeFonts();
    m_form->verticalLayout_value->holdStill();
}

DashBoardDeviceItem::~DashBoardDeviceItem() = default;

void DashBoardDeviceItem::setConnected(const QString &serialNumber)
{
    if (isOwn(serialNumber))
        decideBackground(StateBackground::Normal);
}

void DashBoardDeviceItem::setDisconnected(const QString &serialNumber)
{
    if (!isOwn(serialNumber))
        return;
    decideBackground(StateBackground::NoData);
    m_form->label_number->clear();
    m_form->label_unit->clear();
}

void DashBoardDeviceItem::setValue(const QString &text)
{
    if (!m_device)
        return;
    const bool newLength = text.size() != m_form->label_number->text().size();
    m_form->label_number->setText(text);
    if (newLength)
        m_form->label_number->fitFont();
    showUnit();
    setAlarm(deviceAlarm());
}

void DashBoardDeviceItem::setAlarm(bool alarm)
{
    decideBackground(alarm ? StateBackground::Alarm : StateBackground::Normal);
}

void DashBoardDeviceItem::refresh()
{
    if (!m_device)
        return;
    readNames();
    readUnit();
    if (m_form->label_number->text().isEmpty()) {
        m_form->label_unit->clear();
        decideBackground(StateBackground::NoData);
        return;
    }
    m_form->label_unit->setText(m_unitText);
    m_form->label_unit->fitFont();
    setAlarm(deviceAlarm());
}

bool DashBoardDeviceItem::isOwn(const QString &serialNumber) const
{
    return m_device && m_device->serialNumber() == serialNumber;
}

bool DashBoardDeviceItem::deviceAlarm() const
{
    return m_channel == Channel::One ? m_device->alarmOnChannel1() : m_device->alarmOnChannel2();
}

void DashBoardDeviceItem::readNames()
{
    const bool first = m_channel == Channel::One;
    const QString device = m_device->deviceName().isEmpty() ? m_device->address() : m_device->deviceName();
    QString channel = first ? m_device->ch1Name() : m_device->ch2Name();
    if (channel.isEmpty())
        channel = first ? QStringLiteral("CH1") : QStringLiteral("CH2");
    m_form->label_device->setText(device);
    m_form->label_desc->setText(channel);
    setToolTip(plainToolTip(device + QLatin1Char('\n') + channel));
    setAccessibleName(device + QStringLiteral(", ") + channel);
}

void DashBoardDeviceItem::readUnit()
{
    m_unitText = m_channel == Channel::One
                     ? unitText(channelUnitFromCode(m_device->ch1Unit()), m_device->ch1CustomUnit())
                     : unitText(channelUnitFromCode(m_device->ch2Unit()), m_device->ch2CustomUnit());
}

/// Before anything is laid out: that would look up the styles of parts that are perhaps never shown.
void DashBoardDeviceItem::presizeFonts()
{
    m_form->label_number->setText(QStringLiteral("1"));
    m_form->label_number->fitFont();
    m_form->label_number->clear();
    m_form->label_unit->setText(m_unitText);
    m_form->label_unit->fitFont();
    m_form->label_unit->clear();
}

/// Empty labels do not follow the tile's size: a unit that appears has that to make up for.
void DashBoardDeviceItem::showUnit()
{
    if (m_form->label_unit->text() == m_unitText)
        return;
    m_form->label_unit->setText(m_unitText);
    m_form->label_unit->fitFont();
}

/// A reading of an alarming channel says "connected" first and "alarm" right after: only the last word counts.
void DashBoardDeviceItem::decideBackground(StateBackground background)
{
    if (m_background == background)
        return;
    m_background = background;
    if (m_backgroundPending)
        return;
    m_backgroundPending = true;
    QMetaObject::invokeMethod(this, &DashBoardDeviceItem::applyBackground, Qt::QueuedConnection);
}

void DashBoardDeviceItem::applyBackground()
{
    m_backgroundPending = false;
    showBackground(m_form->frame_value, m_background);
}

void DashBoardDeviceItem::open()
{
    if (m_device)
        emit clicked(m_device);
}

void DashBoardDeviceItem::mousePressEvent(QMouseEvent *)
{
    open();
}

void DashBoardDeviceItem::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        open();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void DashBoardDeviceItem::focusInEvent(QFocusEvent *)
{
    m_focusRing = new QFrame(this);
    m_focusRing->setObjectName(QStringLiteral("focus_ring"));
    m_focusRing->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_focusRing->setStyleSheet(QStringLiteral("border: 2px solid rgb(255,255,147);background-color: transparent;"));
    m_focusRing->setGeometry(rect());
    m_focusRing->show();
}

void DashBoardDeviceItem::focusOutEvent(QFocusEvent *)
{
    delete m_focusRing;
    m_focusRing = nullptr;
}

void DashBoardDeviceItem::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_form->frame_ch->setGeometry(rect());
    if (m_focusRing)
        m_focusRing->setGeometry(rect());
}
