#pragma once

#include <QString>

/// What a running program holds of the system.
struct ProcessUse
{
    int descriptors = 0;
    int sockets = 0; ///< of them
    double residentMiB = 0;

    static ProcessUse of(qint64 processId);
    QString text() const;
    /// The lesser of each.
    ProcessUse orLess(const ProcessUse &other) const;
    /// In what it is more than @p before; empty when in nothing.
    QString moreThan(const ProcessUse &before) const;
};
