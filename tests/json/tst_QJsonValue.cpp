#include "json/QJsonValue.h"

#include <QTest>
#include <limits>

using json::Kind;

Q_DECLARE_METATYPE(json::QJsonValue)

class tst_QJsonValue : public QObject
{
    Q_OBJECT

private slots:
    void kindsAreNumbered_data();
    void kindsAreNumbered();
    void otherKindsReadAsEmpty();
    void toInt_data();
    void toInt();
    void compares();
};

void tst_QJsonValue::kindsAreNumbered_data()
{
    QTest::addColumn<json::QJsonValue>("value");
    QTest::addColumn<int>("number");
    QTest::newRow("null") << json::QJsonValue() << 0;
    QTest::newRow("boolean") << json::QJsonValue(false) << 1;
    QTest::newRow("double") << json::QJsonValue(1.5) << 2;
    QTest::newRow("int") << json::QJsonValue(1) << 2;
    QTest::newRow("string") << json::QJsonValue(QString()) << 3;
    QTest::newRow("array") << json::QJsonValue(json::QJsonArray()) << 4;
    QTest::newRow("object") << json::QJsonValue(json::QJsonObject()) << 5;
}

void tst_QJsonValue::kindsAreNumbered()
{
    QFETCH(json::QJsonValue, value);
    QFETCH(int, number);
    QCOMPARE(static_cast<int>(value.kind()), number);
    QCOMPARE(value.isNull(), number == 0);
}

void tst_QJsonValue::otherKindsReadAsEmpty()
{
    const json::QJsonValue text(QStringLiteral("12"));
    QCOMPARE(text.toBool(), false);
    QCOMPARE(text.toInt(), 0);
    QCOMPARE(text.toDouble(), 0.0);
    QCOMPARE(text.toArray().count(), 0);
    QCOMPARE(text.toObject().count(), 0);
    QCOMPARE(json::QJsonValue(12).toString(), QString());
    QCOMPARE(json::QJsonValue(1).toBool(), false);
    QCOMPARE(json::QJsonValue(true).toInt(), 0);
    QCOMPARE(json::QJsonValue(json::QJsonArray{1}).toObject().count(), 0);
}

void tst_QJsonValue::toInt_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("expected");
    QTest::newRow("whole") << 3.0 << 3;
    QTest::newRow("fraction") << 3.99 << 3;
    QTest::newRow("negative fraction") << -3.99 << -3;
    QTest::newRow("largest") << 2147483647.0 << 2147483647;
    QTest::newRow("smallest") << -2147483648.0 << std::numeric_limits<int>::min();
    QTest::newRow("too large") << 2147483648.0 << 0;
    QTest::newRow("too small") << -2147483649.0 << 0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 0;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0;
}

void tst_QJsonValue::toInt()
{
    QFETCH(double, number);
    QFETCH(int, expected);
    QCOMPARE(json::QJsonValue(number).toInt(), expected);
}

void tst_QJsonValue::compares()
{
    QVERIFY(json::QJsonValue(1) == json::QJsonValue(1.0));
    QVERIFY(json::QJsonValue(1) != json::QJsonValue(true));
    QVERIFY(json::QJsonValue(QString()) != json::QJsonValue());
    QVERIFY(json::QJsonValue(json::QJsonArray{1, 2}) == json::QJsonValue(json::QJsonArray{1, 2}));
    QVERIFY(json::QJsonValue(json::QJsonObject{{"a", 1}}) != json::QJsonValue(json::QJsonObject{{"a", 2}}));
}

QTEST_GUILESS_MAIN(tst_QJsonValue)
#include "tst_QJsonValue.moc"
