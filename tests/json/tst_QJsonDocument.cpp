#include "json/QJsonDocument.h"
#include "json/QJsonValueRef.h"
#include "json/Reader.h"

#include <QTest>

class tst_QJsonDocument : public QObject
{
    Q_OBJECT

private slots:
    void holdsAnObject();
    void holdsAnArray();
    void holdsNothing();
};

void tst_QJsonDocument::holdsAnObject()
{
    const json::QJsonDocument document(json::parse("{\"a\": 1}"));
    QVERIFY(!document.isNull());
    QVERIFY(document.isObject());
    QVERIFY(!document.isArray());
    QCOMPARE(document.object()["a"].toInt(), 1);
    QCOMPARE(document.array().count(), 0);
}

void tst_QJsonDocument::holdsAnArray()
{
    const json::QJsonDocument document(json::parse("[1]"));
    QVERIFY(!document.isNull());
    QVERIFY(!document.isObject());
    QVERIFY(document.isArray());
    QCOMPARE(document.array().at(0).toInt(), 1);
    QCOMPARE(document.object().count(), 0);
}

void tst_QJsonDocument::holdsNothing()
{
    const json::QJsonDocument document(json::parse("nothing"));
    QVERIFY(document.isNull());
    QVERIFY(!document.isObject());
    QVERIFY(!document.isArray());
    QCOMPARE(document.object().count(), 0);
    QCOMPARE(document.array().count(), 0);
}

QTEST_GUILESS_MAIN(tst_QJsonDocument)
#include "tst_QJsonDocument.moc"
