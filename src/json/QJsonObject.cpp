#include "json/QJsonObject.h"

#include "json/QJsonValue.h"
#include "json/QJsonValueRef.h"

#include <QSharedData>
#include <algorithm>
#include <utility>

namespace json {

namespace {

bool keysOutOfOrder(const Member &a, const Member &b)
{
    return a.key >= b.key;
}

bool keyBefore(const Member &member, const QString &key)
{
    return member.key < key;
}

/// Sorts by key and keeps the last member of each key.
void normalise(std::vector<Member> &members)
{
    std::stable_sort(members.begin(), members.end(), [](const Member &a, const Member &b) { return a.key < b.key; });
    const auto firstKept =
        std::unique(members.rbegin(), members.rend(), [](const Member &a, const Member &b) { return a.key == b.key; });
    members.erase(members.begin(), firstKept.base());
}

} // namespace

struct QJsonObject::Data : QSharedData
{
    std::vector<Member> members;
};

QJsonObject::QJsonObject() = default;
QJsonObject::QJsonObject(const QJsonObject &) = default;
QJsonObject::QJsonObject(QJsonObject &&) noexcept = default;
QJsonObject &QJsonObject::operator=(const QJsonObject &) = default;
QJsonObject &QJsonObject::operator=(QJsonObject &&) noexcept = default;
QJsonObject::~QJsonObject() = default;

QJsonObject::QJsonObject(std::initializer_list<Member> members) : QJsonObject(std::vector<Member>(members)) {}

QJsonObject::QJsonObject(std::vector<Member> members)
{
    if (members.empty())
        return;
    // What our own writer wrote is sorted already.
    if (std::adjacent_find(members.begin(), members.end(), keysOutOfOrder) != members.end())
        normalise(members);
    changeable().members = std::move(members);
}

Kind QJsonObject::kind() const
{
    return Kind::Object;
}

int QJsonObject::count() const
{
    return static_cast<int>(end() - begin());
}

bool QJsonObject::contains(const QString &key) const
{
    return find(key) != nullptr;
}

QJsonValueRef QJsonObject::operator[](const QString &key) const
{
    const Member *member = find(key);
    return QJsonValueRef(member ? &member->value : nullptr);
}

void QJsonObject::insert(const QString &key, QJsonValue value)
{
    std::vector<Member> &members = changeable().members;
    auto place = members.end();
    if (!members.empty() && members.back().key >= key)
        place = std::lower_bound(members.begin(), members.end(), key, keyBefore);
    if (place != members.end() && place->key == key)
        place->value = std::move(value);
    else
        members.insert(place, Member{key, std::move(value)});
}

const Member *QJsonObject::begin() const
{
    return m_data ? m_data->members.data() : nullptr;
}

const Member *QJsonObject::end() const
{
    return m_data ? m_data->members.data() + m_data->members.size() : nullptr;
}

QJsonObject::Data &QJsonObject::changeable()
{
    if (!m_data)
        m_data = new Data;
    return *m_data;
}

const Member *QJsonObject::find(const QString &key) const
{
    const Member *place = std::lower_bound(begin(), end(), key, keyBefore);
    return place != end() && place->key == key ? place : nullptr;
}

bool operator==(const QJsonObject &a, const QJsonObject &b)
{
    return a.begin() == b.begin() || std::equal(a.begin(), a.end(), b.begin(), b.end());
}

bool operator!=(const QJsonObject &a, const QJsonObject &b)
{
    return !(a == b);
}

} // namespace json
