#include "FuzzGround.h"

#include "json/QJsonDocument.h"
#include "json/QJsonValue.h"
#include "json/QJsonValueRef.h"
#include "json/Reader.h"
#include "json/Writer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace {

bool agree(const json::QJsonValue &ours, const ::QJsonValue &theirs);

bool agree(const json::QJsonArray &ours, const ::QJsonArray &theirs)
{
    if (ours.count() != theirs.size())
        return false;
    for (int i = 0; i < ours.count(); ++i) {
        if (!agree(ours.at(i), theirs.at(i)))
            return false;
    }
    return true;
}

bool agree(const json::QJsonObject &ours, const ::QJsonObject &theirs)
{
    if (ours.count() != theirs.size())
        return false;
    return std::all_of(ours.begin(), ours.end(), [&theirs](const json::Member &member) {
        return theirs.contains(member.key) && agree(member.value, theirs.value(member.key));
    });
}

/// Whether the toolkit has read the same.
bool agree(const json::QJsonValue &ours, const ::QJsonValue &theirs)
{
    switch (ours.kind()) {
    case json::Kind::Null:
        return theirs.isNull();
    case json::Kind::Boolean:
        return theirs.isBool() && ours.toBool() == theirs.toBool();
    case json::Kind::Number:
        return theirs.isDouble() && ours.toDouble() == theirs.toDouble();
    case json::Kind::String:
        return theirs.isString() && ours.toString() == theirs.toString();
    case json::Kind::Array:
        return theirs.isArray() && agree(ours.toArray(), theirs.toArray());
    case json::Kind::Object:
        return theirs.isObject() && agree(ours.toObject(), theirs.toObject());
    }
    return false;
}

bool isFinite(const json::QJsonValue &value)
{
    const auto isMemberFinite = [](const json::Member &member) {
        return isFinite(member.value);
    };
    const json::QJsonArray array = value.toArray();
    const json::QJsonObject object = value.toObject();
    return std::isfinite(value.toDouble()) && std::all_of(array.begin(), array.end(), isFinite) &&
           std::all_of(object.begin(), object.end(), isMemberFinite);
}

json::QJsonValue valueOf(const json::QJsonDocument &document)
{
    return document.isObject() ? json::QJsonValue(document.object()) : json::QJsonValue(document.array());
}

/// The toolkit loses some of many keys where these are not all printable ASCII, and a byte-order mark.
bool isReadAlikeByToolkit(const json::QJsonDocument &ours, const QString &written)
{
    const bool isPlain =
        std::all_of(written.begin(), written.end(), [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7f; });
    if (!isPlain)
        return true;
    const ::QJsonDocument theirs = ::QJsonDocument::fromJson(written.toUtf8());
    return ours.isObject() ? theirs.isObject() && agree(ours.object(), theirs.object())
                           : theirs.isArray() && agree(ours.array(), theirs.array());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), int(size));
    json::QJsonParseError error;
    const json::QJsonDocument document(json::parse(text, &error));
    require(document.isNull() == (error.number != json::QJsonParseError::NoError), "a document or an error");
    require(error.offset >= 0 && error.offset <= text.size(), "an error lies in the text");
    if (document.isNull())
        return 0;
    const QString written = json::serialise(valueOf(document));
    const json::QJsonDocument again(json::parse(written.toUtf8()));
    require(!again.isNull(), "what is written can be read");
    require(json::serialise(valueOf(again)) == written, "what was read again is written alike");
    if (!isFinite(valueOf(document)))
        return 0; // no number stands for the others
    require(valueOf(again) == valueOf(document), "what was written is read alike");
    require(isReadAlikeByToolkit(document, written), "also by the toolkit");
    return 0;
}
