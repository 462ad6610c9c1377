#include "OperatorSteps.h"

#include "Operator.h"

#include <QTest>

#include <algorithm>

namespace {

bool seesWithin(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, patienceMs);
}

bool seesRow(const QString &list, const QString &start)
{
    const QStringList rows = Operator::rows(list);
    return std::any_of(rows.cbegin(), rows.cend(), [&start](const QString &row) { return row.startsWith(start); });
}

} // namespace

bool createProjectFile(const QString &name)
{
    return Operator::click("btn_create") && Operator::type("QFileDialog/fileNameEdit", name) &&
           Operator::press(Qt::Key_Return) && seesWithin([] { return Operator::sees("ProjectManager"); });
}

bool placeOnDashboard(int dashboard, const QStringList &keys)
{
    if (!Operator::clickTab("tabWidget", dashboard))
        return false;
    for (const QString &key : keys) {
        const auto modifiers = key == keys.first() ? Qt::NoModifier : Qt::ControlModifier;
        if (!Operator::clickRow("availlable_list", key, modifiers))
            return false;
    }
    const QString board = QStringLiteral("configured_list_%1").arg(dashboard + 1);
    return Operator::click("btn_add") && seesWithin([&] {
               return std::all_of(keys.cbegin(), keys.cend(),
                                  [&board](const QString &key) { return seesRow(board, key); });
           });
}

bool chooseInterval(const QString &text)
{
    return Operator::choose("btn_timeInterval", {text}) &&
           seesWithin([&] { return Operator::text("ProjectManager/label_interval") == text; });
}

bool createProject(const QString &name, const QStringList &keys)
{
    return createProjectFile(name) && placeOnDashboard(0, keys) && chooseInterval("1 sec") &&
           Operator::click("btn_confirm") && seesWithin([] { return Operator::sees("ProjectCenter"); });
}

bool openChart(const QString &device)
{
    return Operator::clickRow("list_project", device) && seesWithin([&] {
               return Operator::sees("ChartView") && Operator::text("ChartView/label_device") == device;
           });
}

bool openOptions(const QString &device)
{
    return openChart(device) && Operator::click("btn_setting") &&
           seesWithin([] { return Operator::sees("pushButton_confirm"); });
}

bool openRecent(const QString &name)
{
    return Operator::doubleClickRow("listWidget", name) && seesWithin([] { return Operator::sees("ProjectCenter"); });
}

bool exitStation()
{
    return Operator::choose("command_project", {"Exit"}) && seesWithin([] { return !Operator::sees("SorvantoMain"); });
}
