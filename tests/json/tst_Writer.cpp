#include "json/QJsonValue.h"
#include "json/Writer.h"

#include <QTest>
#include <cfloat>
#include <limits>

Q_DECLARE_METATYPE(json::QJsonValue)

class tst_Writer : public QObject
{
    Q_OBJECT

private slots:
    void writes_data();
    void writes();
    void writesTextsOfAnyLength();
};

void tst_Writer::writes_data()
{
    QTest::addColumn<json::QJsonValue>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const json::QJsonValue &value, const QString &text) {
        QTest::newRow(name) << value << text;
    };
    row("null", {}, "null");
    row("true", true, "true");
    row("false", false, "false");

    row("zero", 0, "0");
    row("negative zero", -0.0, "0");
    row("whole", 3, "3");
    row("negative", -12.5, "-12.5");
    row("17 digits", 0.1, "0.10000000000000001");
    row("third", 1.0 / 3, "0.33333333333333331");
    row("last plain power", 1e16, "10000000000000000");
    row("exponent", 1e17, "1e+17");
    row("small", 1e-7, "9.9999999999999995e-08");
    row("largest", DBL_MAX, "1.7976931348623157e+308");
    row("2^53 + 1 is not exact", 9007199254740993.0, "9007199254740992");
    row("infinity", std::numeric_limits<double>::infinity(), "null");
    row("negative infinity", -std::numeric_limits<double>::infinity(), "null");
    row("NaN", std::numeric_limits<double>::quiet_NaN(), "null");

    row("empty text", QString(), "\"\"");
    row("tab and quote", QStringLiteral("a\tb\"c"), "\"a\\tb\\\"c\"");
    row("all escapes", QStringLiteral("\b\t\n\f\r\"\\"), "\"\\b\\t\\n\\f\\r\\\"\\\\\"");
    row("character 1", QString(QChar(1)), QLatin1Char('"') + QString(QChar(1)) + QLatin1Char('"'));
    row("other control characters", QStringLiteral("\v\x1f\x7f"), QStringLiteral("\"\v\x1f\x7f\""));
    row("zero character", QString(QChar(0)), QLatin1Char('"') + QString(QChar(0)) + QLatin1Char('"'));
    row("slash", QStringLiteral("a/b"), "\"a/b\"");
    row("beyond ASCII", QStringLiteral("K\u00FChlraum \u00B0C \u2013 1"),
        QStringLiteral("\"K\u00FChlraum \u00B0C \u2013 1\""));

    row("empty array", json::QJsonArray(), "[]");
    row("array", json::QJsonArray{1, QStringLiteral("x"), json::QJsonValue(), json::QJsonArray{true}},
        "[1,\"x\",null,[true]]");
    row("empty object", json::QJsonObject(), "{}");
    row("object in key order", json::QJsonObject{{"b", 1}, {"a", 2}}, "{\"a\": 2,\"b\": 1}");
    row("escaped key", json::QJsonObject{{"a\"\\\n", 1}}, "{\"a\\\"\\\\\\n\": 1}");
    row("nested", json::QJsonObject{{"devices", json::QJsonArray{json::QJsonObject{{"x", 1}}, json::QJsonObject()}}},
        "{\"devices\": [{\"x\": 1},{}]}");
}

void tst_Writer::writes()
{
    QFETCH(json::QJsonValue, value);
    QFETCH(QString, text);
    QCOMPARE(json::serialise(value), text);
}

void tst_Writer::writesTextsOfAnyLength()
{
    for (int length = 0; length < 300; ++length) {
        const QString plain(length, QLatin1Char('x'));
        QCOMPARE(json::serialise(plain), QLatin1Char('"') + plain + QLatin1Char('"'));
        // One character to escape, at each place of a vector register.
        for (int place = 0; place < qMin(length, 40); ++place) {
            QString text = plain;
            text[place] = QLatin1Char('\n');
            QString expected = plain;
            expected.replace(place, 1, QStringLiteral("\\n"));
            QCOMPARE(json::serialise(text), QLatin1Char('"') + expected + QLatin1Char('"'));
        }
    }
}

QTEST_GUILESS_MAIN(tst_Writer)
#include "tst_Writer.moc"
