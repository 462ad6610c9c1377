#include "store/InsertStatement.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_InsertStatement : public QObject
{
    Q_OBJECT

private slots:
    void channelValues_data();
    void channelValues();
    void everyHundredthReadsAsInTheGeneralNotation();
    void keys_data();
    void keys();
    void noRowsNeedNoStatement();
    void oneRow();
    void rowsAreJoinedInQueueOrder();
    void equalRowsOfOneStatementAreLeftToTheUnion();
    void fiveHundredRowsAreOneStatement();
    void moreRowsAreSeveralStatements();
    void rowsSeenInTheBatchAreLeftOut();
    void rowsThatOnlyRenderEquallyAreEqual();
};

namespace {

const QString head = QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate)");

std::vector<PendingRow> differentRows(int count)
{
    std::vector<PendingRow> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({QStringLiteral("A1"), 21.5, 40, quint32(1700000000 + i)});
    return rows;
}

} // namespace

void tst_InsertStatement::channelValues_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("short fraction stays") << 21.5 << "21.5";
    QTest::newRow("whole number") << 3.0 << "3";
    QTest::newRow("six digits") << 123456.0 << "123456";
    QTest::newRow("seven digits") << 1234567.0 << "1.23457e+06";
    QTest::newRow("rounded") << 21.123456789 << "21.1235";
    QTest::newRow("small") << 0.00001234 << "1.234e-05";
    QTest::newRow("negative") << -40.25 << "-40.25";
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("minus zero") << -0.0 << "0";
    QTest::newRow("hundredth") << 0.01 << "0.01";
    QTest::newRow("minus a tenth") << -0.1 << "-0.1";
    QTest::newRow("largest with two decimals") << 9999.99 << "9999.99";
    QTest::newRow("one digit too many") << 10000.01 << "10000";
    QTest::newRow("no value") << 1.7e308 << "NULL";
    QTest::newRow("next to no value") << std::nextafter(1.7e308, 0.0) << "1.7e+308";
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << "NULL";
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity() << "NULL";
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity() << "NULL";
}

void tst_InsertStatement::channelValues()
{
    QFETCH(double, value);
    QFETCH(QString, text);

    QCOMPARE(insertTerm({QStringLiteral("A1"), value, 1, 7}), QStringLiteral("select 'A1', %1, 1, 7").arg(text));
    QCOMPARE(insertTerm({QStringLiteral("A1"), 1, value, 7}), QStringLiteral("select 'A1', 1, %1, 7").arg(text));
}

// Values with two decimals take a way of their own.
void tst_InsertStatement::everyHundredthReadsAsInTheGeneralNotation()
{
    const auto check = [](double value) {
        const QString expected = QStringLiteral("select 'A1', %1, 1, 7").arg(QString::number(value, 'g', 6));
        if (insertTerm({QStringLiteral("A1"), value, 1, 7}) != expected)
            QFAIL(qPrintable(expected));
    };
    for (int hundredths = -1000100; hundredths <= 1000100; hundredths += 61) {
        const double value = hundredths / 100.0;
        check(value);
        check(std::nextafter(value, 1e9));
        check(std::nextafter(value, -1e9));
        check(value + 0.005);
        check(value + 0.0049999);
    }
    for (double value = 1e-12; value < 1e18; value *= 1.37) {
        check(value);
        check(-value);
    }
}

void tst_InsertStatement::keys_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");

    QTest::newRow("serial number") << "ZP-0001"
                                   << "'ZP-0001'";
    QTest::newRow("MAC address") << "0050C2A1B2C3"
                                 << "'0050C2A1B2C3'";
    QTest::newRow("empty") << ""
                           << "''";
    QTest::newRow("quote") << "O'Brien"
                           << "'O''Brien'";
    QTest::newRow("only quotes") << "''"
                                 << "''''''";
    QTest::newRow("injection") << "'); drop table ostrivane;--"
                               << "'''); drop table ostrivane;--'";
    QTest::newRow("double quote and backslash") << "a\"b\\"
                                                << "'a\"b\\'";
    QTest::newRow("accents") << QString::fromUtf8("K\xc3\xbchlraum") << QString::fromUtf8("'K\xc3\xbchlraum'");
    QTest::newRow("surrogate pair") << QString::fromUtf8("\xf0\x9f\x8c\xa1") << QString::fromUtf8("'\xf0\x9f\x8c\xa1'");
    QTest::newRow("zero byte") << QString(QChar(0)) + "B"
                               << "''||char(0)||'B'";
    const QString half(QChar(0xd83c));
    QTest::newRow("half a surrogate pair") << "A" + half << "'A" + QString::fromUtf8(half.toUtf8()) + "'";
}

void tst_InsertStatement::keys()
{
    QFETCH(QString, key);
    QFETCH(QString, text);

    QCOMPARE(insertTerm({key, 1, 2, 7}), QStringLiteral("select %1, 1, 2, 7").arg(text));
}

void tst_InsertStatement::noRowsNeedNoStatement()
{
    QVERIFY(insertStatements({}).isEmpty());
}

void tst_InsertStatement::oneRow()
{
    QCOMPARE(insertStatements({{QStringLiteral("A1"), 21.5, 40, 4294967295u}}),
             QStringList(head + " select 'A1', 21.5, 40, 4294967295;"));
}

void tst_InsertStatement::rowsAreJoinedInQueueOrder()
{
    const QStringList statements =
        insertStatements({{QStringLiteral("A1"), 21.5, noValue, 1700000000}, {QStringLiteral("B2"), 3, 4, 1700000000}});

    QCOMPARE(statements, QStringList("insert into ostrivane (serialno, channel1, channel2, pointDate) select 'A1', "
                                     "21.5, NULL, 1700000000 union select 'B2', 3, 4, 1700000000;"));
}

void tst_InsertStatement::equalRowsOfOneStatementAreLeftToTheUnion()
{
    const PendingRow row{QStringLiteral("A1"), 1, 2, 7};

    QCOMPARE(insertStatements({row, row}), QStringList(head + " select 'A1', 1, 2, 7 union select 'A1', 1, 2, 7;"));
}

void tst_InsertStatement::fiveHundredRowsAreOneStatement()
{
    const QStringList statements = insertStatements(differentRows(500));

    QCOMPARE(statements.size(), 1);
    QCOMPARE(statements.first().count(QStringLiteral(" union ")), 499);
}

void tst_InsertStatement::moreRowsAreSeveralStatements()
{
    const QStringList statements = insertStatements(differentRows(1001));

    QCOMPARE(statements.size(), 3);
    QCOMPARE(statements.at(0).count(QStringLiteral("select")), 500);
    QCOMPARE(statements.at(1).count(QStringLiteral("select")), 500);
    QVERIFY(statements.at(1).startsWith(head + " select 'A1', 21.5, 40, 1700000500 union "));
    QVERIFY(statements.at(1).endsWith(QStringLiteral(";")));
    QCOMPARE(statements.at(2), head + " select 'A1', 21.5, 40, 1700001000;");
}

void tst_InsertStatement::rowsSeenInTheBatchAreLeftOut()
{
    std::vector<PendingRow> rows = differentRows(500);
    const std::vector<PendingRow> again = rows;
    rows.insert(rows.end(), again.begin(), again.end());
    rows.push_back({QStringLiteral("B2"), 1, 2, 7});

    const QStringList statements = insertStatements(rows);

    QCOMPARE(statements.size(), 2);
    QCOMPARE(statements.at(0).count(QStringLiteral("select")), 500);
    QCOMPARE(statements.at(1), head + " select 'B2', 1, 2, 7;");
}

void tst_InsertStatement::rowsThatOnlyRenderEquallyAreEqual()
{
    std::vector<PendingRow> rows = differentRows(500);
    rows.push_back({rows[3].serial, rows[3].channel1 + 1e-9, rows[3].channel2, rows[3].time});

    QCOMPARE(insertStatements(rows).size(), 1);
}

QTEST_GUILESS_MAIN(tst_InsertStatement)
#include "tst_InsertStatement.moc"
