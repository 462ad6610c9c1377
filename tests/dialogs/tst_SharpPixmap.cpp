#include "dialogs/SharpPixmap.h"
#include <QImage>
#include <QTest>

/// Every picture of the station, as compiled in: there at both densities, of the size its form needs, and not blank.
class tst_SharpPixmap : public QObject
{
    Q_OBJECT

private slots:
    void everyPictureIsThereAtBothDensities_data();
    void everyPictureIsThereAtBothDensities();
    void fractionalDensityTakesTheDenserPicture();
    void missingPictureIsNull();
};

namespace {

bool isBlank(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != image.pixel(0, 0))
                return false;
        }
    }
    return true;
}

} // namespace

void tst_SharpPixmap::everyPictureIsThereAtBothDensities_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("DashboardText") << QSize(99, 16);
    QTest::newRow("DeviceCh1") << QSize(46, 52);
    QTest::newRow("DeviceCh2") << QSize(46, 52);
    QTest::newRow("DeviceConnectedSymbol") << QSize(16, 16);
    QTest::newRow("DeviceConnectingSymbol") << QSize(16, 16);
    QTest::newRow("DeviceDisconnectedSymbol") << QSize(16, 16);
    QTest::newRow("DeviceImg") << QSize(16, 16);
    QTest::newRow("I_2") << QSize(64, 64);
    QTest::newRow("LoadingLite") << QSize(480, 280);
    QTest::newRow("OstrivaneLogo") << QSize(100, 18);
    QTest::newRow("OstrivaneSymbol2") << QSize(24, 24);
    QTest::newRow("RecordButton") << QSize(50, 50);
    QTest::newRow("RecordStopButton") << QSize(50, 50);
    QTest::newRow("SettingButton") << QSize(18, 18);
    QTest::newRow("SorvantoLogoLite") << QSize(135, 30);
    QTest::newRow("StateReady") << QSize(84, 16);
    QTest::newRow("StateRecording") << QSize(84, 16);
    QTest::newRow("btn_addDevice") << QSize(32, 32);
    QTest::newRow("btn_createProject") << QSize(32, 32);
    QTest::newRow("btn_interval") << QSize(32, 32);
    QTest::newRow("btn_removeDevice") << QSize(32, 32);
    QTest::newRow("icon_lan") << QSize(16, 16);
    QTest::newRow("icon_usb") << QSize(16, 16);
    QTest::newRow("sorvanto_lite") << QSize(720, 326);
}

void tst_SharpPixmap::everyPictureIsThereAtBothDensities()
{
    QFETCH(QSize, size);
    const QString path = QStringLiteral(":/img/%1.png").arg(QLatin1String(QTest::currentDataTag()));

    const QPixmap single = sharpPixmap(path, 1);
    QCOMPARE(single.size(), size);
    QCOMPARE(single.devicePixelRatio(), 1.0);
    QVERIFY(!isBlank(single));

    const QPixmap twofold = sharpPixmap(path, 2);
    QCOMPARE(twofold.size(), size * 2);
    QCOMPARE(twofold.devicePixelRatio(), 2.0);
    QVERIFY(!isBlank(twofold));
}

void tst_SharpPixmap::fractionalDensityTakesTheDenserPicture()
{
    QCOMPARE(sharpPixmap(QStringLiteral(":/img/I_2.png"), 1.5).devicePixelRatio(), 2.0);
}

void tst_SharpPixmap::missingPictureIsNull()
{
    QVERIFY(sharpPixmap(QStringLiteral(":/img/missing.png"), 2).isNull());
}

QTEST_MAIN(tst_SharpPixmap)
#include "tst_SharpPixmap.moc"
