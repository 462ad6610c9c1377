#include "dialogs/ProjectManager.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/DeviceRow.h"
#include "dialogs/Logging.h"
#include "dialogs/ManualConfigDeviceDialog.h"
#include "dialogs/TransientMessage.h"
#include "ui_ProjectManager.h"

#include <algorithm>
#include <utility>

void ProjectManager::slotManualConfigDeviceDlg()
{
    // One that was closed by its window is hidden only.
    delete m_manualDialog;
    m_manualDialog = new ManualConfigDeviceDialog(this);
    connect(m_manualDialog, &ManualConfigDeviceDialog::ManualConfigDeviceConfirm, this,
            &ProjectManager::slotManualConfigDevice);
    m_manualDialog->show();
}

void ProjectManager::slotManualConfigDevice(ConfiguredDevice *device)
{
    m_handAdded.append(device);
    const QString key = device->serialNumber();
    if (isPlaced(key)) {
        device->closeDevice();
        showError(QStringLiteral("the mac address already exists."));
        return;
    }
    QListWidget *board = currentBoard();
    device->setDashboardNumber(m_form->tabWidget->currentIndex());
    if (board->count() >= maxRowsOnBoard) {
        device->closeDevice();
        showBoardFull();
        return;
    }
    // What stood under this key before was removed; the address typed now is the one that counts.
    m_configuredList.erase(
        std::remove_if(m_configuredList.begin(), m_configuredList.end(),
                       [&key](const auto *earlier) { return isSameKey(earlier->serialNumber(), key); }),
        m_configuredList.end());
    m_configuredList.append(device);
    logDialogs() << "ProjectManager::slotManualConfigDevice : " << m_configuredList.size();
    board->addItem(makeConfiguredRow(*device));
    delete rowOfKey(*m_form->availlable_list, key);
    if (m_configuredList.size() >= maxDevices)
        setAddingEnabled(false);
}

void ProjectManager::slotProjectListConfirm()
{
    QList<ConfiguredDevice *> devices;
    for (int number = 0; number < dashboardCount; ++number) {
        const QListWidget *board = m_boards.at(static_cast<size_t>(number));
        for (int i = 0; i < board->count(); ++i) {
            ConfiguredDevice *device = deviceOfRow(*board->item(i));
            if (!device) {
                logDialogs() << "slotProjectListConfirm [" << keyOf(*board->item(i)) << "] is not found";
                continue;
            }
            device->setDashboardNumber(number);
            devices.append(device);
        }
    }
    logDialogs() << "ProjectManager::slotProjectListConfirm : " << devices.size();
    if (devices.isEmpty()) {
        showTransientMessage(QStringLiteral("INFORMATION"),
                             QStringLiteral("You must add at least one device to the dashboard.\nPlease retry."), this);
        return;
    }
    for (ConfiguredDevice *device : std::as_const(devices))
        m_handAdded.removeAll(device);
    QStringList names;
    for (const QLineEdit *edit : m_names)
        names.append(edit->text());
    emit projectListConfirm(devices, names);
}

ConfiguredDevice *ProjectManager::deviceOfRow(const QListWidgetItem &row) const
{
    const AvailDevice *found = availDevice(keyOf(row));
    if (ConfiguredDevice *device = configuredDevice(keyOf(row))) {
        // A network logger that was taken out and moved back as found is where the search has found it.
        if (found && isFoundRow(row) && found->kind == device->interfaceKind() && linkKind(found->kind).hasTcpPort)
            device->setDeviceInfo(device->deviceName(), device->ch1Name(), device->ch2Name(), found->address,
                                  found->port);
        return device;
    }
    if (!found)
        return nullptr;
    auto *device = new ConfiguredDevice(found->key, found->kind);
    device->setDeviceInfo(nameInRow(row), QStringLiteral("CH1"), QStringLiteral("CH2"), found->address, found->port);
    return device;
}

QList<ConfiguredDevice *> ProjectManager::unseenDevices(const QList<ConfiguredDevice *> &confirmed) const
{
    QList<ConfiguredDevice *> unseen;
    for (ConfiguredDevice *device : m_unseen) {
        // One that was found, or added by hand, has a place now.
        if (std::none_of(confirmed.cbegin(), confirmed.cend(), [device](const ConfiguredDevice *other) {
                return isSameKey(device->serialNumber(), other->serialNumber());
            }))
            unseen.append(device);
    }
    return unseen;
}

QList<ConfiguredDevice *> ProjectManager::takeUnconfirmedDevices()
{
    if (m_manualDialog)
        m_manualDialog->close();
    for (ConfiguredDevice *device : std::as_const(m_handAdded))
        m_configuredList.removeAll(device);
    return std::exchange(m_handAdded, {});
}

ConfiguredDevice *ProjectManager::configuredDevice(const QString &key) const
{
    ConfiguredDevice *inOtherCase = nullptr;
    for (ConfiguredDevice *device : m_configuredList) {
        if (device->serialNumber() == key)
            return device;
        if (isSameKey(device->serialNumber(), key))
            inOtherCase = device;
    }
    return inOtherCase;
}

const AvailDevice *ProjectManager::availDevice(const QString &key) const
{
    const auto found = std::find_if(m_availList.cbegin(), m_availList.cend(),
                                    [&key](const AvailDevice &device) { return isSameKey(device.key, key); });
    return found == m_availList.cend() ? nullptr : &*found;
}
