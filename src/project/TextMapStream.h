#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// A map of texts in the form in which the toolkit streams a map of variants, in its oldest version, in which it puts
/// objects into settings files.
QByteArray textMapToStream(const QMap<QString, QString> &map);

/// The texts of a map or a hash, up to the first value of another type and as far as the stream reaches, whatever
/// lengths it names.
QMap<QString, QString> textMapFromStream(const QByteArray &stream);
