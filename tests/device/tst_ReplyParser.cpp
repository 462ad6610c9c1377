#include "device/ReplyParser.h"

#include <QTest>

class tst_ReplyParser : public QObject
{
    Q_OBJECT

private slots:
    void readsOneLine_data();
    void readsOneLine();
    void skipsWhatIsNoReading_data();
    void skipsWhatIsNoReading();
    void keepsTheOrderOfLines();
    void readsThousandsOfLines();
    void readsHugeFields();
};

void tst_ReplyParser::readsOneLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("text1");
    QTest::addColumn<double>("value1");
    QTest::addColumn<QString>("text2");
    QTest::addColumn<double>("value2");
    QTest::newRow("plain") << "21.50,45.10"
                           << "21.50" << 21.5 << "45.10" << 45.1;
    QTest::newRow("rounded to two decimals") << "21.556,-0.125"
                                             << "21.56" << 21.556 << "-0.13" << -0.125;
    QTest::newRow("whole numbers") << "21,-45"
                                   << "21.00" << 21.0 << "-45.00" << -45.0;
    QTest::newRow("exponent") << "1e3,2.5e-1"
                              << "1000.00" << 1000.0 << "0.25" << 0.25;
    QTest::newRow("plus sign") << "+5,+6.5"
                               << "5.00" << 5.0 << "6.50" << 6.5;
    QTest::newRow("first missing") << "----,45.1"
                                   << "----" << noValue << "45.10" << 45.1;
    QTest::newRow("second missing") << "21.5,----"
                                    << "21.50" << 21.5 << "----" << noValue;
    QTest::newRow("missing is kept as sent") << "x-----y,-----"
                                             << "x-----y" << noValue << "-----" << noValue;
    QTest::newRow("three dashes are no number") << "---,1"
                                                << "0.00" << 0.0 << "1.00" << 1.0;
    QTest::newRow("words") << "warm,damp"
                           << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("empty fields") << ","
                                  << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("number with a tail") << "21.5C,45.1%"
                                        << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("further fields") << "1,2,3,four"
                                    << "1.00" << 1.0 << "2.00" << 2.0;
    QTest::newRow("nan") << "nan,NaN"
                         << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("infinite") << "inf,-inf"
                              << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("too large") << "1e400,-1e400"
                               << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("quotes") << "','1"
                            << "0.00" << 0.0 << "0.00" << 0.0;
    QTest::newRow("hexadecimal") << "0x10,1"
                                 << "0.00" << 0.0 << "1.00" << 1.0;
    QTest::newRow("decimal comma makes a field") << "21,5,45,1"
                                                 << "21.00" << 21.0 << "5.00" << 5.0;
    QTest::newRow("binary") << QString::fromLatin1("\x01\xFF\xB0,\x02") << "0.00" << 0.0 << "0.00" << 0.0;
}

void tst_ReplyParser::readsOneLine()
{
    QFETCH(QString, line);
    const QVector<Reading> readings = parseReply(line + '\n');
    QCOMPARE(readings.size(), 1);
    QTEST(readings[0].channel1.text(), "text1");
    QTEST(readings[0].channel1.value, "value1");
    QTEST(readings[0].channel2.text(), "text2");
    QTEST(readings[0].channel2.value, "value2");
    QCOMPARE(parseReply(line).size(), 1);
}

void tst_ReplyParser::skipsWhatIsNoReading_data()
{
    QTest::addColumn<QString>("reply");
    QTest::newRow("empty") << "";
    QTest::newRow("line feeds") << "\n\n\n";
    QTest::newRow("one field") << "21.50\n";
    QTest::newRow("semicolons") << "21.50;45.10\n";
    QTest::newRow("fields on two lines") << "21.50\n45.10\n";
    QTest::newRow("dashes alone") << "----\n";
}

void tst_ReplyParser::skipsWhatIsNoReading()
{
    QFETCH(QString, reply);
    QCOMPARE(parseReply(reply).size(), 0);
}

void tst_ReplyParser::keepsTheOrderOfLines()
{
    const QVector<Reading> readings = parseReply("\n1,2\nrubbish\n3,4\n\n5,6");
    QCOMPARE(readings.size(), 3);
    QCOMPARE(readings[0].channel1.value, 1.0);
    QCOMPARE(readings[1].channel2.value, 4.0);
    QCOMPARE(readings[2].channel1.value, 5.0);
}

void tst_ReplyParser::readsThousandsOfLines()
{
    QString reply;
    for (int i = 0; i < 5000; ++i)
        reply += QString::number(i) + ",1\n";
    const QVector<Reading> readings = parseReply(reply);
    QCOMPARE(readings.size(), 5000);
    QCOMPARE(readings.last().channel1.value, 4999.0);
}

void tst_ReplyParser::readsHugeFields()
{
    const QString digits(4000, '9');
    const QVector<Reading> large = parseReply(digits + "," + digits + "\n");
    QCOMPARE(large.size(), 1);
    QCOMPARE(large[0].channel1.text(), QString("0.00"));
    const QVector<Reading> small = parseReply("0." + digits + "," + QString(100000, ',') + "\n");
    QCOMPARE(small.size(), 1);
    QCOMPARE(small[0].channel1.text(), QString("1.00"));
    QCOMPARE(small[0].channel2.value, 0.0);
}

QTEST_GUILESS_MAIN(tst_ReplyParser)
#include "tst_ReplyParser.moc"
