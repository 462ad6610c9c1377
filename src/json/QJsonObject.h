#pragma once

#include "json/QJsonRoot.h"

#include <QSharedDataPointer>
#include <QString>
#include <initializer_list>
#include <vector>

namespace json {

class QJsonValue;
class QJsonValueRef;
struct Member;

/// Values by key, sorted by the keys' UTF-16 code units. Copies share their data until one of them is changed.
class QJsonObject : public QJsonRoot
{
public:
    QJsonObject();
    QJsonObject(std::initializer_list<Member> members);
    /// Takes the members in any order; of several with one key the last one counts.
    explicit QJsonObject(std::vector<Member> members);
    QJsonObject(const QJsonObject &);
    QJsonObject(QJsonObject &&) noexcept;
    QJsonObject &operator=(const QJsonObject &);
    QJsonObject &operator=(QJsonObject &&) noexcept;
    ~QJsonObject() override;

    Kind kind() const override;
    int count() const;
    bool contains(const QString &key) const;
    /// Valid until the object is changed.
    QJsonValueRef operator[](const QString &key) const;
    /// Sets the value of @p key, whether there was one or not.
    void insert(const QString &key, QJsonValue value);

    // Members in key order, valid until the object is changed.
    const Member *begin() const;
    const Member *end() const;

private:
    struct Data;
    Data &changeable();
    const Member *find(const QString &key) const;

    QSharedDataPointer<Data> m_data; ///< null while the object is empty
};

bool operator==(const QJsonObject &a, const QJsonObject &b);
bool operator!=(const QJsonObject &a, const QJsonObject &b);

} // namespace json
