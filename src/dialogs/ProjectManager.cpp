#include "dialogs/ProjectManager.h"

#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "dialogs/DeviceRow.h"
#include "dialogs/ElidingDelegate.h"
#include "dialogs/Logging.h"
#include "dialogs/TransientMessage.h"
#include "ui_ProjectManager.h"

#include <QMenu>
#include <QPainter>
#include <algorithm>

namespace {

// Where the interval menu opens, seen from its button.
constexpr QPoint menuOffset(5, 46);

/// The style's own picture of a disabled button is brighter than the enabled one on a dark background.
void fadeWhenDisabled(QAbstractButton *button)
{
    constexpr qreal opacity = 0.35;
    QIcon icon = button->icon();
    const QPixmap full = icon.pixmap(button->iconSize());
    QPixmap faded(full.size());
    faded.setDevicePixelRatio(full.devicePixelRatio());
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(opacity);
    painter.drawPixmap(0, 0, full);
    painter.end();
    icon.addPixmap(faded, QIcon::Disabled);
    button->setIcon(icon);
}

} // namespace

ProjectManager::ProjectManager(QWidget *parent)
    : QWidget(parent), m_form(std::make_unique<Ui::ProjectManager>()), m_boards(), m_names()
{
    m_form->setupUi(this);
    m_boards = {m_form->configured_list_1, m_form->configured_list_2, m_form->configured_list_3,
                m_form->configured_list_4};
    m_names = {m_form->lineEdit_dashboard_1, m_form->lineEdit_dashboard_2, m_form->lineEdit_dashboard_3,
               m_form->lineEdit_dashboard_4};
    m_form->availlable_list->setItemDelegate(new ElidingDelegate(m_form->availlable_list));
    for (QListWidget *board : m_boards)
        board->setItemDelegate(new ElidingDelegate(board));
    for (QPushButton *button : {m_form->btn_add, m_form->btn_timeInterval})
        fadeWhenDisabled(button);
    buildIntervalMenu();
    connectForm();
}

ProjectManager::~ProjectManager() = default;

void ProjectManager::takeFocus()
{
    m_form->availlable_list->setFocus();
}

void ProjectManager::connectForm()
{
    connect(m_form->btn_add, &QPushButton::clicked, this, &ProjectManager::slotProjectAddDevice);
    connect(m_form->availlable_list, &QListWidget::itemDoubleClicked, this, &ProjectManager::slotDblProjectAddDevice);
    connect(m_form->btn_remove, &QPushButton::clicked, this, &ProjectManager::slotProjectRemoveDevice);
    connect(m_form->btn_manual, &QPushButton::clicked, this, &ProjectManager::slotManualConfigDeviceDlg);
    connect(m_form->btn_confirm, &QPushButton::clicked, this, &ProjectManager::slotProjectListConfirm);
    connect(m_form->btn_timeInterval, &QPushButton::clicked, this, &ProjectManager::slotCommandInterval);
    connect(m_form->pushButton_refresh, &QPushButton::clicked, this, &ProjectManager::slotRefresh);
}

void ProjectManager::buildIntervalMenu()
{
    m_intervalMenu = new QMenu(QStringLiteral("Interval"), this);
    m_intervalMenu->setStyleSheet(QStringLiteral("background-color: rgb(198, 198, 198);color: rgb(55,55,55);"));
    for (const int ms : selectableIntervals()) {
        QAction *action = m_intervalMenu->addAction(intervalText(ms));
        action->setCheckable(true);
        action->setData(ms);
        action->setChecked(ms == dataIntervalMs);
        connect(action, &QAction::triggered, this, &ProjectManager::slotIntervalChange);
        m_intervals.append(action);
    }
    m_form->label_interval->setText(intervalText(dataIntervalMs));
}

void ProjectManager::setIntervalDisabled(bool disabled)
{
    m_form->btn_timeInterval->setDisabled(disabled);
    m_intervalMenu->setDisabled(disabled);
}

void ProjectManager::setConfiguredDeviceList(const QList<ConfiguredDevice *> &devices)
{
    m_configuredList = devices;
    if (devices.size() >= maxDevices)
        showError(QStringLiteral("cannot add more than 64 devices."));
    for (ConfiguredDevice *device : devices) {
        if (!place(*device))
            m_unseen.append(device);
    }
    if (placedRows() >= maxDevices)
        setAddingEnabled(false);
    logDialogs() << "ProjectManager::setConfiguredDeviceList : " << devices.size();
}

bool ProjectManager::place(const ConfiguredDevice &device)
{
    const int number = device.dashboardNumber();
    if (number < 0 || number >= dashboardCount)
        return false;
    QListWidget *board = m_boards.at(static_cast<size_t>(number));
    if (board->count() >= maxRowsOnBoard) {
        logDialogs() << "[ERROR] ProjectManager::setConfiguredDeviceList : dashboard item count is over 16.";
        return false;
    }
    board->addItem(makeConfiguredRow(device));
    return true;
}

void ProjectManager::setAvailDeviceList(const QList<AvailDevice *> &devices)
{
    m_availList.clear();
    QList<AvailDevice> shown;
    for (const AvailDevice *device : devices) {
        m_availList.append(*device);
        if (!isPlaced(device->key))
            shown.append(*device);
    }
    showFoundRows(shown, m_form->availlable_list);
}

void ProjectManager::setDashboardNames(const QStringList &names)
{
    for (int i = 0; i < names.size() && i < dashboardCount; ++i)
        m_names.at(static_cast<size_t>(i))->setText(names.at(i));
}

void ProjectManager::slotProjectAddDevice()
{
    QListWidget *board = currentBoard();
    if (board->count() >= maxRowsOnBoard) {
        showBoardFull();
        return;
    }
    for (QListWidgetItem *row : selectedRows(*m_form->availlable_list)) {
        moveRow(row, board);
        if (board->count() >= maxRowsOnBoard) {
            showBoardFull();
            break;
        }
    }
    if (placedRows() >= maxDevices)
        setAddingEnabled(false);
}

void ProjectManager::slotDblProjectAddDevice(QListWidgetItem *item)
{
    QListWidget *board = currentBoard();
    if (board->count() >= maxRowsOnBoard) {
        showBoardFull();
        return;
    }
    moveRow(item, board);
    if (placedRows() >= maxDevices)
        setAddingEnabled(false);
}

void ProjectManager::slotProjectRemoveDevice()
{
    for (QListWidgetItem *row : selectedRows(*currentBoard()))
        removeRow(row);
    if (placedRows() < maxDevices)
        setAddingEnabled(true);
}

void ProjectManager::removeRow(QListWidgetItem *row)
{
    const QString key = keyOf(*row);
    ConfiguredDevice *device = configuredDevice(key);
    if (m_handAdded.contains(device))
        device->closeDevice(); // the logger may take one connection only, and be added anew
    if (availDevice(key))
        moveRow(row, m_form->availlable_list);
    else
        delete row;
}

void ProjectManager::slotCommandInterval()
{
    m_intervalMenu->move(mapToGlobal(pos()) + m_form->btn_timeInterval->pos() + menuOffset);
    m_intervalMenu->show();
}

void ProjectManager::slotIntervalChange()
{
    const auto *chosen = qobject_cast<QAction *>(sender());
    if (!chosen)
        return;
    for (QAction *action : std::as_const(m_intervals))
        action->setChecked(action == chosen);
    dataIntervalMs = chosen->data().toInt();
    m_form->label_interval->setText(chosen->text());
}

void ProjectManager::slotRefresh()
{
    emit refreshAvailDeviceList();
}

QListWidget *ProjectManager::currentBoard() const
{
    return m_boards.at(static_cast<size_t>(m_form->tabWidget->currentIndex()));
}

int ProjectManager::placedRows() const
{
    int rows = 0;
    for (const QListWidget *board : m_boards)
        rows += board->count();
    return rows;
}

bool ProjectManager::isPlaced(const QString &key) const
{
    return std::any_of(m_boards.cbegin(), m_boards.cend(),
                       [&key](const QListWidget *board) { return rowOfKey(*board, key); });
}

void ProjectManager::setAddingEnabled(bool enabled)
{
    m_form->btn_add->setEnabled(enabled);
    m_form->btn_manual->setEnabled(enabled);
}

void ProjectManager::showBoardFull()
{
    showError(QStringLiteral("cannot add more than 16 devices to the dashboard."));
}

void ProjectManager::showError(const QString &text)
{
    showTransientMessage(QStringLiteral("ERROR"), text, this);
}
