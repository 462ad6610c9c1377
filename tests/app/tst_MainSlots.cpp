#include "app/SorvantoMain.h"
#include "support/MetaMethods.h"

#include <QTest>

/// The controller's slots, which others call by their place as well as by their name.
class tst_MainSlots : public QObject
{
    Q_OBJECT

private slots:
    void standInTheirOrder()
    {
        const QStringList expected{
            QStringLiteral("topDblClick()"),
            QStringLiteral("slotCommandProject()"),
            QStringLiteral("slotCommandRecord()"),
            QStringLiteral("slotCommandScreen()"),
            QStringLiteral("slotCommandHelp()"),
            QStringLiteral("slotViewFull(bool)"),
            QStringLiteral("slotShowHideItem(bool)"),
            QStringLiteral("slotCloseProject()"),
            QStringLiteral("slotAddDeviceProject()"),
            QStringLiteral("slotRefreshDevice()"),
            QStringLiteral("slotAutoProject(bool)"),
            QStringLiteral("slotAutoRecord(bool)"),
            QStringLiteral("slotKeepAlive(bool)"),
            QStringLiteral("slotLookbackRecord()"),
            QStringLiteral("slotReportDaily()"),
            QStringLiteral("slotUpdateProjectFile()"),
            QStringLiteral("slotRefreshAvailDeviceList()"),
            QStringLiteral("slotToggleRecord()"),
            QStringLiteral("slotStartRecord()"),
            QStringLiteral("slotStopRecord()"),
            QStringLiteral("projectCreated(QString)"),
            QStringLiteral("projectLoaded(QString)"),
            QStringLiteral("projectListConfirm(QList<ConfiguredDevice*>,QStringList)"),
            QStringLiteral("checkConnection()"),
            QStringLiteral("slotStdTimer()"),
            QStringLiteral("writeDevice()"),
            QStringLiteral("writeDb()"),
            QStringLiteral("slotSndUdpSocketDeleted()"),
            QStringLiteral("slotRcvUdpSocketDeleted()"),
            QStringLiteral("readPendingDatagrams()"),
            QStringLiteral("handleStateChanged(QAudio::State)"),
        };
        QCOMPARE(methodsOf(SorvantoMain::staticMetaObject, QMetaMethod::Slot), expected);
    }
};

QTEST_APPLESS_MAIN(tst_MainSlots)
#include "tst_MainSlots.moc"
