#pragma once

#include <QMetaMethod>
#include <QStringList>

/// The signatures of the class's own methods of one kind, in the order of their declaration.
inline QStringList methodsOf(const QMetaObject &meta, QMetaMethod::MethodType type)
{
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == type)
            names << QString::fromLatin1(meta.method(i).methodSignature());
    }
    return names;
}
