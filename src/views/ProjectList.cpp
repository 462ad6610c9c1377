#include "views/ProjectList.h"

#include "device/ConfiguredDevice.h"
#include "ui_ProjectList.h"

/// What a device sees of its row.
class ProjectList::Row : public ListEntry
{
public:
    Row(QListWidgetItem *item, const ProjectList *list) : m_item(item), m_list(list) {}

    void setConnectionState(bool connected) override
    {
        m_item->setIcon(connected ? m_list->m_connectedIcon : m_list->m_disconnectedIcon);
    }

private:
    QListWidgetItem *m_item;
    const ProjectList *m_list;
};

ProjectList::ProjectList(const QString &projectName, QWidget *parent)
    : QWidget(parent),
      m_form(std::make_unique<Ui::ProjectList>()),
      m_connectedIcon(QStringLiteral(":/img/DeviceConnectingSymbol.png")),
      m_disconnectedIcon(QStringLiteral(":/img/DeviceDisconnectedSymbol.png"))
{
    m_form->setupUi(this);
    m_form->button_project->setText(projectName);
    connect(m_form->button_project, &QAbstractButton::clicked, this, &ProjectList::slotPushDashboard);
    connect(m_form->list_project, &QListWidget::itemClicked, this,
            QOverload<QListWidgetItem *>::of(&ProjectList::deviceClicked));
}

ProjectList::~ProjectList() = default;

void ProjectList::setDevices(const QList<ConfiguredDevice *> &devices)
{
    for (ConfiguredDevice *device : devices) {
        if (!device)
            continue;
        auto *item = new QListWidgetItem(m_form->list_project);
        describe(item, device);
        m_rows.push_back(std::make_unique<Row>(item, this));
        device->setListItem(m_rows.back().get());
        m_items.insert(device, item);
    }
}

void ProjectList::selectDevice(ConfiguredDevice *device)
{
    m_form->list_project->clearSelection();
    if (QListWidgetItem *item = m_items.value(device))
        item->setSelected(true);
}

void ProjectList::refresh()
{
    for (auto entry = m_items.cbegin(); entry != m_items.cend(); ++entry)
        describe(entry.value(), entry.key());
}

void ProjectList::slotPushDashboard()
{
    emit dashboardClicked();
}

void ProjectList::deviceClicked(QListWidgetItem *item)
{
    emit deviceClicked(m_items.key(item));
}

void ProjectList::describe(QListWidgetItem *item, const ConfiguredDevice *device) const
{
    item->setText(device->deviceName().isEmpty() ? device->serialNumber() : device->deviceName());
    item->setToolTip(device->address().toHtmlEscaped());
}
