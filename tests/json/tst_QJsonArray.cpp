#include "json/QJsonValue.h"

#include <QTest>

class tst_QJsonArray : public QObject
{
    Q_OBJECT

private slots:
    void keepsOrder();
    void insertsAnywhere_data();
    void insertsAnywhere();
    void readsNullOutside();
    void copiesShareUntilChanged();
    void changeDetaches();
    void canContainItself();
    void copyOutlivesItsOrigin();
};

namespace {

QList<int> ints(const json::QJsonArray &array)
{
    QList<int> list;
    for (const json::QJsonValue &value : array)
        list << value.toInt();
    return list;
}

} // namespace

void tst_QJsonArray::keepsOrder()
{
    json::QJsonArray array;
    QCOMPARE(array.count(), 0);
    QVERIFY(array.begin() == array.end());
    array.append(3);
    array.append(1);
    array.append(2);
    QCOMPARE(array.count(), 3);
    QCOMPARE(ints(array), QList<int>({3, 1, 2}));
    QCOMPARE(array.kind(), json::Kind::Array);
    QVERIFY(array == json::QJsonArray({3, 1, 2}));
    QVERIFY(array != json::QJsonArray({1, 2, 3}));
    QVERIFY(json::QJsonArray() == json::QJsonArray(std::vector<json::QJsonValue>()));
}

void tst_QJsonArray::insertsAnywhere_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("front") << 0 << QList<int>{9, 1, 2};
    QTest::newRow("middle") << 1 << QList<int>{1, 9, 2};
    QTest::newRow("end") << 2 << QList<int>{1, 2, 9};
    QTest::newRow("before the front") << -5 << QList<int>{9, 1, 2};
    QTest::newRow("behind the end") << 77 << QList<int>{1, 2, 9};
}

void tst_QJsonArray::insertsAnywhere()
{
    QFETCH(int, index);
    QFETCH(QList<int>, expected);
    json::QJsonArray array{1, 2};
    array.insert(index, 9);
    QCOMPARE(ints(array), expected);
}

void tst_QJsonArray::readsNullOutside()
{
    const json::QJsonArray array{1};
    QVERIFY(array.at(-1).isNull());
    QVERIFY(array.at(1).isNull());
    QVERIFY(json::QJsonArray().at(0).isNull());
}

void tst_QJsonArray::copiesShareUntilChanged()
{
    const json::QJsonArray array{1, 2};
    const json::QJsonArray copy = array;
    QCOMPARE(copy.begin(), array.begin());
    const json::QJsonValue value = array;
    QCOMPARE(value.toArray().begin(), array.begin());
}

void tst_QJsonArray::changeDetaches()
{
    json::QJsonArray array{1, 2};
    json::QJsonArray copy = array;
    copy.append(3);
    QCOMPARE(ints(array), QList<int>({1, 2}));
    QCOMPARE(ints(copy), QList<int>({1, 2, 3}));

    json::QJsonArray other = array;
    array.insert(0, 0);
    QCOMPARE(ints(other), QList<int>({1, 2}));
    QCOMPARE(ints(array), QList<int>({0, 1, 2}));
}

void tst_QJsonArray::canContainItself()
{
    json::QJsonArray array{1};
    array.append(array);
    array.append(array.at(0));
    QCOMPARE(array.count(), 3);
    QCOMPARE(ints(array.at(1).toArray()), QList<int>{1});
    QCOMPARE(array.at(2).toInt(), 1);
}

void tst_QJsonArray::copyOutlivesItsOrigin()
{
    json::QJsonArray copy;
    {
        json::QJsonArray array{QStringLiteral("first")};
        copy = array;
        array.append(2);
    }
    QCOMPARE(copy.count(), 1);
    QCOMPARE(copy.at(0).toString(), QStringLiteral("first"));
}

QTEST_GUILESS_MAIN(tst_QJsonArray)
#include "tst_QJsonArray.moc"
