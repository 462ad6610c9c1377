#include "views/Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QTest>

class tst_Fonts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutes(); }

    void namedFontsAreReplacedByTheirLikes_data()
    {
        QTest::addColumn<QString>("like");
        QTest::newRow("Segoe UI") << "Open Sans";
        QTest::newRow("Arial") << "Liberation Sans";
    }

    void namedFontsAreReplacedByTheirLikes()
    {
        QFETCH(QString, like);
        const QString wanted = QLatin1String(QTest::currentDataTag());
        QCOMPARE(QFont::substitutes(wanted).value(0).toLower(), like.toLower());
        const QStringList families = QFontDatabase().families();
        if (!families.contains(wanted) && families.contains(like))
            QCOMPARE(QFontInfo(QFont(wanted)).family(), like);
    }
};

QTEST_MAIN(tst_Fonts)
#include "tst_Fonts.moc"
