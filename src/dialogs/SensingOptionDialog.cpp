#include "dialogs/SensingOptionDialog.h"

#include "device/ChannelUnit.h"
#include "dialogs/SharpPixmap.h"
#include "dialogs/TransientMessage.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int customUnitLength = 11;

} // namespace

SensingOptionDialog::SensingOptionDialog(ConfiguredDevice *device, QWidget *parent) : QDialog(parent), m_device(device)
{
    connect(device, &QObject::destroyed, this, &SensingOptionDialog::slotReject);
}

ConfiguredDevice *SensingOptionDialog::device() const
{
    return m_device;
}

void SensingOptionDialog::showDevice(const Fields &fields)
{
    m_fields = fields;
    m_fields.logo->setPixmap(sharpPixmap(QStringLiteral(":/img/SorvantoLogoLite.png")));
    m_fields.key->setText(m_device->serialNumber());
    m_fields.deviceName->setText(m_device->deviceName());
    m_fields.channelNames[0]->setText(m_device->ch1Name());
    m_fields.channelNames[1]->setText(m_device->ch2Name());
    showUnit(m_fields.units[0], m_device->ch1Unit(), m_device->ch1CustomUnit());
    showUnit(m_fields.units[1], m_device->ch2Unit(), m_device->ch2CustomUnit());
    showLimits();
    setLimitsEnabled(m_device->isConnected());
    connect(m_fields.confirm, &QPushButton::clicked, this, &SensingOptionDialog::confirm);
}

void SensingOptionDialog::showUnit(QComboBox *combo, int code, const QString &customText)
{
    for (const ChannelUnit unit : {UndefinedUnit, CelsiusUnit, FahrenheitUnit, HumidityUnit, CustomUnit}) {
        const bool isNamed = unit == CustomUnit && !customText.isEmpty();
        combo->addItem(isNamed ? customText : channelTypeText(unit), static_cast<int>(unit));
    }
    // What the operator types is the unit's text, not one more unit.
    combo->setInsertPolicy(QComboBox::NoInsert);
    connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SensingOptionDialog::checkCustomUnitPolicy);
    combo->setCurrentIndex(combo->findData(static_cast<int>(channelUnitFromCode(code))));
}

void SensingOptionDialog::checkCustomUnitPolicy(int index)
{
    auto *combo = qobject_cast<QComboBox *>(sender());
    if (!combo)
        return;
    const bool isCustom = combo->itemData(index).toInt() == CustomUnit;
    combo->setEditable(isCustom);
    if (!isCustom)
        return;
    combo->setCompleter(nullptr);
    combo->lineEdit()->setMaxLength(customUnitLength);
    combo->lineEdit()->selectAll();
}

void SensingOptionDialog::showLimits()
{
    const AlarmRange range = m_device->alarmRange();
    const std::array<float, 4> limits{range.min1, range.max1, range.min2, range.max2};
    for (size_t i = 0; i < limits.size(); ++i) {
        QDoubleSpinBox *box = m_fields.limits[i];
        box->setValue(static_cast<double>(limits[i]));
        m_limitsShown[i] = box->value();
    }
}

AlarmRange SensingOptionDialog::editedRange() const
{
    AlarmRange range = m_device->alarmRange();
    const std::array<float *, 4> limits{&range.min1, &range.max1, &range.min2, &range.max2};
    for (size_t i = 0; i < limits.size(); ++i) {
        // A limit may have more decimals than its box: it is rounded only if somebody changed it.
        const double value = m_fields.limits[i]->value();
        if (value != m_limitsShown[i])
            *limits[i] = static_cast<float>(value);
    }
    return range;
}

bool SensingOptionDialog::applyNamesAndUnits(quint16 port)
{
    const QString missing = missingName();
    if (!missing.isEmpty()) {
        showTransientMessage(QStringLiteral("INFORMATION"), missing, this);
        return false;
    }
    if (refusesALimit())
        return false;
    m_device->setDeviceInfo(m_fields.deviceName->text(), m_fields.channelNames[0]->text(),
                            m_fields.channelNames[1]->text(), m_device->address(), port);
    const QString custom1 = customUnit(m_fields.units[0], m_device->ch1CustomUnit());
    const QString custom2 = customUnit(m_fields.units[1], m_device->ch2CustomUnit());
    m_device->setUnits(unitCode(m_fields.units[0]), unitCode(m_fields.units[1]));
    m_device->setCustomUnits(custom1, custom2);
    return true;
}

QString SensingOptionDialog::missingName() const
{
    if (m_fields.deviceName->text().isEmpty())
        return QStringLiteral("Enter the Device Name.");
    if (m_fields.channelNames[0]->text().isEmpty())
        return QStringLiteral("Enter the Channel-1 Name.");
    if (m_fields.channelNames[1]->text().isEmpty())
        return QStringLiteral("Enter the Channel-2 Name.");
    return {};
}

/// Tells the operator about the first limit that is no number, and puts the cursor there.
bool SensingOptionDialog::refusesALimit()
{
    static const std::array<const char *, 4> names{"alarm minimum of channel 1", "alarm maximum of channel 1",
                                                   "alarm minimum of channel 2", "alarm maximum of channel 2"};
    for (size_t i = 0; i < names.size(); ++i) {
        QDoubleSpinBox *box = m_fields.limits[i];
        if (box->hasAcceptableInput())
            continue;
        box->setFocus();
        box->selectAll();
        const QString text = QStringLiteral("The %1 is not valid.\nEnter a number from %2 to %3 with at most two "
                                            "decimals, such as 21.75.");
        showTransientMessage(QStringLiteral("ERROR"),
                             text.arg(QLatin1String(names[i]), QString::number(box->minimum(), 'f', 0),
                                      QString::number(box->maximum(), 'f', 0)),
                             this);
        return true;
    }
    return false;
}

int SensingOptionDialog::unitCode(const QComboBox *combo)
{
    return combo->currentData().toInt();
}

/// A longer text that a project file brought is cut in its field; it stays whole while nobody changes it.
QString SensingOptionDialog::customUnit(const QComboBox *combo, const QString &stored)
{
    if (unitCode(combo) != CustomUnit)
        return {};
    const QString text = combo->currentText();
    return !text.isEmpty() && text == stored.left(customUnitLength) ? stored : text;
}

void SensingOptionDialog::setNamesAndUnitsEnabled(bool on)
{
    m_fields.confirm->setEnabled(on);
    m_fields.deviceName->setEnabled(on);
    for (QLineEdit *name : m_fields.channelNames)
        name->setEnabled(on);
    for (QComboBox *unit : m_fields.units)
        unit->setEnabled(on);
}

void SensingOptionDialog::setLimitsEnabled(bool on)
{
    for (QDoubleSpinBox *limit : m_fields.limits)
        limit->setEnabled(on);
}

void SensingOptionDialog::slotReject()
{
    deleteLater();
    reject();
}

void SensingOptionDialog::finish()
{
    deleteLater();
    accept();
}
