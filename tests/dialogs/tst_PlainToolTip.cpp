#include "dialogs/PlainToolTip.h"

#include <QTest>
#include <QTextDocument>

class tst_PlainToolTip : public QObject
{
    Q_OBJECT

private slots:
    void textShowsLetterByLetter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << "";
        QTest::newRow("name") << "Cold room";
        QTest::newRow("ampersand") << "Heat & Cold";
        QTest::newRow("tag") << "<b>Oven</b>";
        QTest::newRow("tag with ampersand") << "<b>Heat & Cold</b>";
        QTest::newRow("written entity") << "&lt;b&gt;";
        QTest::newRow("tag in the second line") << "Oven\n<b>Air</b>";
        QTest::newRow("comparison") << "3 < 5";
    }

    void textShowsLetterByLetter()
    {
        QFETCH(QString, text);
        const QString tip = plainToolTip(text);
        QString shown = tip;
        if (Qt::mightBeRichText(tip)) {
            QTextDocument document;
            document.setHtml(tip);
            shown = document.toPlainText();
        }
        QCOMPARE(shown, text);
    }
};

QTEST_MAIN(tst_PlainToolTip)
#include "tst_PlainToolTip.moc"
