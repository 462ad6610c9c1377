#include "views/ProjectList.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/ElidingDelegate.h"
#include "ui_ProjectList.h"

#include <QPointer>
#include <QScrollBar>
#include <QShortcut>
#include <algorithm>

namespace {

// The list's own style sheet would leave its scroll bar nothing but outlines.
const QString scrollBarStyle = QStringLiteral(
    "QScrollBar:vertical { background: transparent; border: none; width: 8px; margin: 0px; }"
    "QScrollBar::handle:vertical { background: rgb(110, 114, 118); border-radius: 4px; min-height: 24px; }"
    "QScrollBar::handle:vertical:hover { background: rgb(150, 154, 158); }"
    "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0px; }"
    "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: transparent; }");

} // namespace

/// A device's row, and what the device sees of it.
class ProjectList::Row : public ListEntry
{
public:
    Row(QListWidgetItem *item, ConfiguredDevice *device, const ProjectList *list)
        : m_item(item), m_device(device), m_list(list)
    {
    }

    QListWidgetItem *item() const { return m_item; }
    ConfiguredDevice *device() const { return m_device; }
    void forgetDevice() { m_device.clear(); }

    void setConnectionState(bool connected) override
    {
        m_item->setIcon(connected ? m_list->m_connectedIcon : m_list->m_disconnectedIcon);
    }

    void describe()
    {
        if (!m_device)
            return;
        m_item->setText(m_device->deviceName().isEmpty() ? m_device->serialNumber() : m_device->deviceName());
        m_item->setToolTip(m_device->address());
    }

private:
    QListWidgetItem *m_item;
    QPointer<ConfiguredDevice> m_device;
    const ProjectList *m_list;
};

ProjectList::ProjectList(const QString &projectName, QWidget *parent)
    : QWidget(parent),
      m_form(std::make_unique<Ui::ProjectList>()),
      m_connectedIcon(QStringLiteral(":/img/DeviceConnectingSymbol.png")),
      m_disconnectedIcon(QStringLiteral(":/img/DeviceDisconnectedSymbol.png"))
{
    m_form->setupUi(this);
    m_form->button_project->setText(QString(projectName).replace(QLatin1Char('&'), QStringLiteral("&&")));
    m_form->list_project->setItemDelegate(new ElidingDelegate(m_form->list_project));
    m_form->list_project->verticalScrollBar()->setStyleSheet(scrollBarStyle);
    connect(m_form->button_project, &QAbstractButton::clicked, this, &ProjectList::slotPushDashboard);
    connect(m_form->list_project, &QListWidget::itemClicked, this,
            QOverload<QListWidgetItem *>::of(&ProjectList::deviceClicked));
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, m_form->list_project);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, &ProjectList::openCurrent);
    }
}

ProjectList::~ProjectList() = default;

void ProjectList::takeFocus()
{
    m_form->list_project->setFocus();
}

void ProjectList::setDevices(const QList<ConfiguredDevice *> &devices)
{
    for (ConfiguredDevice *device : devices) {
        if (!device)
            continue;
        if (Row *earlier = rowOf(device))
            earlier->forgetDevice();
        m_rows.push_back(std::make_unique<Row>(new QListWidgetItem(m_form->list_project), device, this));
        m_rows.back()->describe();
        device->setListItem(m_rows.back().get());
    }
}

void ProjectList::selectDevice(const ConfiguredDevice *device)
{
    m_form->list_project->clearSelection();
    if (const Row *row = rowOf(device))
        row->item()->setSelected(true);
}

void ProjectList::refresh()
{
    for (const auto &row : m_rows)
        row->describe();
}

void ProjectList::slotPushDashboard()
{
    emit dashboardClicked();
}

void ProjectList::deviceClicked(QListWidgetItem *item)
{
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [item](const auto &row) { return row->item() == item; });
    emit deviceClicked(found == m_rows.cend() ? nullptr : (*found)->device());
}

ProjectList::Row *ProjectList::rowOf(const ConfiguredDevice *device) const
{
    if (!device)
        return nullptr;
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [device](const auto &row) { return row->device() == device; });
    return found == m_rows.cend() ? nullptr : found->get();
}

void ProjectList::openCurrent()
{
    if (QListWidgetItem *item = m_form->list_project->currentItem())
        deviceClicked(item);
}
