#include "device/ConfiguredDevice.h"
#include "views/ProjectList.h"

#include <QHelpEvent>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QToolTip>

namespace {

bool shows(const QListWidgetItem *item, const QString &picture)
{
    return item->icon().pixmap(16, 16).toImage() == QIcon(picture).pixmap(16, 16).toImage();
}

const QString connectedPicture = QStringLiteral(":/img/DeviceConnectingSymbol.png");
const QString disconnectedPicture = QStringLiteral(":/img/DeviceDisconnectedSymbol.png");

} // namespace

class tst_ProjectList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<ConfiguredDevice *>(); }

    void init()
    {
        m_named = std::make_unique<ConfiguredDevice>(QStringLiteral("0200AA000001"), NetworkInterface);
        m_named->setDeviceInfo(QStringLiteral("Cold room"), {}, {}, QStringLiteral("10.0.0.7"), 23);
        m_nameless = std::make_unique<ConfiguredDevice>(QStringLiteral("12345678"), UsbInterface);
        m_nameless->setDeviceInfo({}, {}, {}, QStringLiteral("ttyACM0"), 23);
        m_list = std::make_unique<ProjectList>(QStringLiteral("Kitchen"));
        m_list->setDevices({m_named.get(), nullptr, m_nameless.get()});
        m_items = m_list->findChild<QListWidget *>(QStringLiteral("list_project"));
    }

    void cleanup()
    {
        m_named->detachViews();
        m_nameless->detachViews();
        m_list.reset();
        m_named.reset();
        m_nameless.reset();
    }

    void listsNamesOrKeys()
    {
        QCOMPARE(m_items->count(), 2);
        QCOMPARE(m_items->item(0)->text(), QStringLiteral("Cold room"));
        QCOMPARE(m_items->item(0)->toolTip(), QStringLiteral("10.0.0.7"));
        QCOMPARE(m_items->item(1)->text(), QStringLiteral("12345678"));
        QCOMPARE(m_items->item(1)->toolTip(), QStringLiteral("ttyACM0"));
    }

    void iconFollowsTheConnection()
    {
        QVERIFY(shows(m_items->item(0), disconnectedPicture));
        m_named->deviceConnected();
        QVERIFY(shows(m_items->item(0), connectedPicture));
        QVERIFY(shows(m_items->item(1), disconnectedPicture));
        m_named->deviceDisconnected();
        QVERIFY(shows(m_items->item(0), disconnectedPicture));
    }

    void refreshReadsNamesAgain()
    {
        m_named->setDeviceInfo(QStringLiteral("Freezer"), {}, {}, QStringLiteral("10.0.0.8"), 23);
        m_list->refresh();
        QCOMPARE(m_items->item(0)->text(), QStringLiteral("Freezer"));
        QCOMPARE(m_items->item(0)->toolTip(), QStringLiteral("10.0.0.8"));
    }

    void selectsOneDevice()
    {
        m_list->selectDevice(m_nameless.get());
        QCOMPARE(m_items->selectedItems(), QList<QListWidgetItem *>{m_items->item(1)});
        ConfiguredDevice stranger(QStringLiteral("stranger"), NetworkInterface);
        m_list->selectDevice(&stranger);
        QVERIFY(m_items->selectedItems().isEmpty());
    }

    void clicksReachTheirDevice()
    {
        QSignalSpy clicked(m_list.get(), QOverload<ConfiguredDevice *>::of(&ProjectList::deviceClicked));
        emit m_items->itemClicked(m_items->item(1));
        QCOMPARE(clicked.takeFirst().at(0).value<ConfiguredDevice *>(), m_nameless.get());
        QListWidgetItem stray;
        emit m_items->itemClicked(&stray);
        QCOMPARE(clicked.takeFirst().at(0).value<ConfiguredDevice *>(), nullptr);
    }

    void keysOpenTheCurrentRow_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Return") << Qt::Key_Return;
        QTest::newRow("Enter") << Qt::Key_Enter;
    }

    void keysOpenTheCurrentRow()
    {
        QFETCH(Qt::Key, key);
        m_list->show();
        QVERIFY(QTest::qWaitForWindowActive(m_list.get()));
        m_items->setFocus();
        m_items->setCurrentRow(1);
        QSignalSpy clicked(m_list.get(), QOverload<ConfiguredDevice *>::of(&ProjectList::deviceClicked));
        QTest::keyClick(m_items, key);
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(clicked.first().first().value<ConfiguredDevice *>(), m_nameless.get());
    }

    void aDeviceListedTwiceKeepsItsLastRow()
    {
        m_list->setDevices({m_named.get()});
        QCOMPARE(m_items->count(), 3);
        m_named->deviceConnected();
        QVERIFY(shows(m_items->item(0), disconnectedPicture));
        QVERIFY(shows(m_items->item(2), connectedPicture));
        m_list->selectDevice(m_named.get());
        QCOMPARE(m_items->selectedItems(), QList<QListWidgetItem *>{m_items->item(2)});
        QSignalSpy clicked(m_list.get(), QOverload<ConfiguredDevice *>::of(&ProjectList::deviceClicked));
        emit m_items->itemClicked(m_items->item(0));
        QCOMPARE(clicked.first().first().value<ConfiguredDevice *>(), nullptr);
    }

    void rowsOutliveTheirDevices()
    {
        m_named->detachViews();
        m_named = std::make_unique<ConfiguredDevice>(QStringLiteral("another"), NetworkInterface);
        QSignalSpy clicked(m_list.get(), QOverload<ConfiguredDevice *>::of(&ProjectList::deviceClicked));
        emit m_items->itemClicked(m_items->item(0));
        QCOMPARE(clicked.first().first().value<ConfiguredDevice *>(), nullptr);
        m_list->refresh();
        QCOMPARE(m_items->item(0)->text(), QStringLiteral("Cold room"));
        m_list->selectDevice(m_named.get());
        m_list->selectDevice(nullptr);
        QVERIFY(m_items->selectedItems().isEmpty());
    }

    void longNamesAreElidedWithTheWholeInTheToolTip()
    {
        const QString name = QStringLiteral("The <second> cold room of the warehouse.");
        QCOMPARE(name.size(), 40);
        m_named->setDeviceInfo(name, {}, {}, QStringLiteral("10.0.0.7"), 23);
        m_list->refresh();
        m_list->resize(200, 404);
        m_list->show();
        QVERIFY(m_items->visualItemRect(m_items->item(0)).width() <= m_items->viewport()->width());
        QCOMPARE(toolTipOf(0), QStringLiteral("The <second> cold room of the warehouse. 10.0.0.7"));
        QCOMPARE(toolTipOf(1), QStringLiteral("ttyACM0"));
    }

    void projectNameIsPlainText()
    {
        const ProjectList list(QStringLiteral("Heat & Cold"));
        QCOMPARE(list.findChild<QPushButton *>(QStringLiteral("button_project"))->text(),
                 QStringLiteral("Heat && Cold"));
    }

    void formIsAsDesigned()
    {
        const auto *button = m_list->findChild<QPushButton *>(QStringLiteral("button_project"));
        QCOMPARE(button->toolTip(), QStringLiteral("show Dashboard"));
        QCOMPARE(button->styleSheet(), QStringLiteral("color: rgb(230,230,230);"));
        QCOMPARE(button->minimumHeight(), 41);
        QCOMPARE(button->maximumHeight(), 41);
        QCOMPARE(button->font().pointSize(), 11);
        QCOMPARE(m_items->font().pointSize(), 9);
        QCOMPARE(m_items->frameShape(), QFrame::NoFrame);
        QCOMPARE(m_items->styleSheet(),
                 QStringLiteral("background-color: transparent; color: rgb(230,230,230); selection-color: "
                                "rgb(230,230,230); selection-background-color: rgb(130, 130, 130);"));
        QCOMPARE(m_list->styleSheet(),
                 QStringLiteral("color: rgb(230,230,230);\nQToolTip { color: rgb(230,230,230); background-color: "
                                "rgb(12, 12, 12); border: #996633; }"));
    }

    void projectButtonLeadsToTheDashboards()
    {
        auto *button = m_list->findChild<QPushButton *>(QStringLiteral("button_project"));
        QCOMPARE(button->text(), QStringLiteral("Kitchen"));
        QSignalSpy clicked(m_list.get(), &ProjectList::dashboardClicked);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);
    }

private:
    /// The text that pops up over a row, as it is read.
    QString toolTipOf(int row)
    {
        const QPoint position = m_items->visualItemRect(m_items->item(row)).center();
        QHelpEvent help(QEvent::ToolTip, position, m_items->viewport()->mapToGlobal(position));
        QCoreApplication::sendEvent(m_items->viewport(), &help);
        const QString tip = QToolTip::text();
        return (Qt::mightBeRichText(tip) ? QTextDocumentFragment::fromHtml(tip).toPlainText() : tip).simplified();
    }

    std::unique_ptr<ConfiguredDevice> m_named;
    std::unique_ptr<ConfiguredDevice> m_nameless;
    std::unique_ptr<ProjectList> m_list;
    QListWidget *m_items = nullptr;
};

QTEST_MAIN(tst_ProjectList)
#include "tst_ProjectList.moc"
