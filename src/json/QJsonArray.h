#pragma once

#include "json/QJsonRoot.h"

#include <QSharedDataPointer>
#include <initializer_list>
#include <vector>

namespace json {

class QJsonValue;

/// An ordered list of values. Copies share their data until one of them is changed.
class QJsonArray : public QJsonRoot
{
public:
    QJsonArray();
    QJsonArray(std::initializer_list<QJsonValue> values);
    explicit QJsonArray(std::vector<QJsonValue> values);
    QJsonArray(const QJsonArray &);
    QJsonArray(QJsonArray &&) noexcept;
    QJsonArray &operator=(const QJsonArray &);
    QJsonArray &operator=(QJsonArray &&) noexcept;
    ~QJsonArray() override;

    Kind kind() const override;
    int count() const;
    /// A null value where there is no such index.
    const QJsonValue &at(int index) const;
    void append(QJsonValue value);
    /// Puts @p value before the one at @p index; an index outside the array means its nearer end.
    void insert(int index, QJsonValue value);

    // Valid until the array is changed.
    const QJsonValue *begin() const;
    const QJsonValue *end() const;

private:
    struct Data;
    Data &changeable();

    QSharedDataPointer<Data> m_data; ///< null while the array is empty
};

bool operator==(const QJsonArray &a, const QJsonArray &b);
bool operator!=(const QJsonArray &a, const QJsonArray &b);

} // namespace json
