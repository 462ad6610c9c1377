#include "FuzzGround.h"

#include "json/QJsonDocument.h"
#include "json/QJsonValue.h"
#include "json/QJsonValueRef.h"
#include "json/Reader.h"
#include "json/Writer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

bool agree(const json::QJsonValue &ours, const ::QJsonValue &theirs);

/// The toolkit drops a byte-order mark at the beginning of a text.
QString withoutMark(QString text)
{
    return text.remove(QChar(QChar::ByteOrderMark));
}

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
    for (const json::Member &member : ours) {
        if (!theirs.contains(member.key) || !agree(member.value, theirs.value(member.key)))
            return false;
    }
    return true;
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
        return theirs.isString() && withoutMark(ours.toString()) == withoutMark(theirs.toString());
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

/// Each is strict where the other is not; what both read they read alike, and what the toolkit writes we read.
void compareWithToolkit(const QByteArray &text, const json::QJsonDocument &ours, const json::QJsonParseError &error)
{
    const ::QJsonDocument theirs = ::QJsonDocument::fromJson(text);
    if (theirs.isNull() || error.number == json::QJsonParseError::DeepNesting)
        return;
    const json::QJsonDocument ofTheirs(json::parse(theirs.toJson(::QJsonDocument::Compact)));
    require(!ofTheirs.isNull(), "what the toolkit writes is read");
    for (const json::QJsonDocument *document : {&ours, &ofTheirs})
        require(document->isNull() || (theirs.isObject() ? agree(document->object(), theirs.object())
                                                         : agree(document->array(), theirs.array())),
                "what both read they read alike");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), int(size));
    json::QJsonParseError error;
    const json::QJsonDocument document(json::parse(text, &error));
    require(document.isNull() == (error.number != json::QJsonParseError::NoError), "a document or an error");
    require(error.offset >= 0 && error.offset <= text.size(), "an error lies in the text");
    compareWithToolkit(text, document, error);
    if (document.isNull())
        return 0;
    const QString written = json::serialise(valueOf(document));
    const json::QJsonDocument again(json::parse(written.toUtf8()));
    require(!again.isNull(), "what is written can be read");
    require(json::serialise(valueOf(again)) == written, "what was read again is written alike");
    // No number stands for the others.
    require(valueOf(again) == valueOf(document) || !isFinite(valueOf(document)), "what was written is read alike");
    return 0;
}
