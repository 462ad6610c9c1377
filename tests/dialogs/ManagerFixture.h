#pragma once

#include "device/AvailDevice.h"
#include "device/ConfiguredDevice.h"
#include "dialogs/MessageDialog.h"
#include "dialogs/ProjectManager.h"

#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTextBrowser>
#include <memory>
#include <vector>

/// A device manager with the project's devices and found loggers that a test gives it.
class ManagerFixture
{
public:
    ProjectManager panel;

    template <typename Widget>
    Widget *child(const char *name) const
    {
        return panel.findChild<Widget *>(QLatin1String(name));
    }
    QPushButton *button(const char *name) const { return child<QPushButton>(name); }
    QListWidget *available() const { return child<QListWidget>("availlable_list"); }
    /// Dashboards are numbered from 0.
    QListWidget *board(int number) const
    {
        return panel.findChild<QListWidget *>(QStringLiteral("configured_list_%1").arg(number + 1));
    }
    void openBoard(int number) const { child<QTabWidget>("tabWidget")->setCurrentIndex(number); }

    void find(const QString &key, const QString &address, quint16 port, int kind)
    {
        m_found.push_back(std::make_unique<AvailDevice>(AvailDevice{key, address, port, kind}));
    }
    void findNetworkLoggers(int count)
    {
        for (int i = 0; i < count; ++i)
            find(networkKey(i), QStringLiteral("10.0.0.%1").arg(i + 1), 23, NetworkInterface);
    }
    static QString networkKey(int number) { return QStringLiteral("02AA%1").arg(number, 8, 10, QLatin1Char('0')); }
    void forgetFound() { m_found.clear(); }
    void giveFound()
    {
        QList<AvailDevice *> list;
        for (const auto &device : m_found)
            list.append(device.get());
        panel.setAvailDeviceList(list);
    }

    /// A device of the project that is edited.
    ConfiguredDevice *configure(const QString &name, const QString &key, int kind, int dashboard)
    {
        ConfiguredDevice *device = make(name, key, QStringLiteral("10.1.0.1"), kind);
        device->setDashboardNumber(dashboard);
        m_configured.append(device);
        return device;
    }
    void giveConfigured() { panel.setConfiguredDeviceList(m_configured); }
    /// A device that stays in this fixture's hands.
    ConfiguredDevice *make(const QString &name, const QString &key, const QString &address, int kind = NetworkInterface)
    {
        m_devices.push_back(std::make_unique<ConfiguredDevice>(key, kind));
        ConfiguredDevice *device = m_devices.back().get();
        device->setDeviceInfo(name, QStringLiteral("Air"), QStringLiteral("Water"), address, 23);
        return device;
    }

    void selectFirst(int count) const
    {
        available()->clearSelection();
        for (int i = 0; i < count; ++i)
            available()->item(i)->setSelected(true);
    }
    /// Moves the first rows of the searched list to a dashboard.
    void move(int count, int dashboard) const
    {
        openBoard(dashboard);
        selectFirst(count);
        button("btn_add")->click();
    }
    /// Takes the row of @p key off its dashboard.
    void remove(const QString &key, int dashboard) const
    {
        openBoard(dashboard);
        board(dashboard)->clearSelection();
        for (int i = 0; i < board(dashboard)->count(); ++i)
            board(dashboard)->item(i)->setSelected(keys(board(dashboard)).at(i) == key);
        button("btn_remove")->click();
    }

    static QStringList texts(const QListWidget *list)
    {
        QStringList all;
        for (int i = 0; i < list->count(); ++i)
            all << list->item(i)->text();
        return all;
    }
    static QStringList keys(const QListWidget *list)
    {
        QStringList all;
        for (int i = 0; i < list->count(); ++i)
            all << list->item(i)->data(Qt::ToolTipRole).toString();
        return all;
    }

    /// "TITLE: text" of each message so far.
    QStringList messages() const
    {
        QStringList all;
        for (const MessageDialog *message : panel.findChildren<MessageDialog *>())
            all << message->findChild<QGroupBox *>()->title() + QStringLiteral(": ") +
                       message->findChild<QTextBrowser *>()->toPlainText();
        return all;
    }

private:
    std::vector<std::unique_ptr<AvailDevice>> m_found;
    std::vector<std::unique_ptr<ConfiguredDevice>> m_devices;
    QList<ConfiguredDevice *> m_configured;
};
