#include <QLocale>
#include <QTest>

#include <clocale>

/// The decimal mark of the locale in which the tests of this run are: where a run is made for one, the tests must have
/// it.
class tst_DecimalMark : public QObject
{
    Q_OBJECT

private slots:
    void isTheOneAskedFor()
    {
        const QString mark = QString::fromUtf8(std::localeconv()->decimal_point);
        QCOMPARE(mark, qEnvironmentVariable("SORVANTO_DECIMAL_MARK", mark));
        QCOMPARE(QString(QLocale::system().decimalPoint()),
                 qEnvironmentVariable("SORVANTO_DECIMAL_MARK", QLocale::system().decimalPoint()));
    }
};

QTEST_GUILESS_MAIN(tst_DecimalMark)
#include "tst_DecimalMark.moc"
