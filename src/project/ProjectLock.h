#pragma once

#include "project/StationLock.h"

/// Keeps a project to one station.
class ProjectLock
{
public:
    explicit ProjectLock(const QString &projectFile);

    /// False while another station has the project; see StationLock.
    bool acquire();
    /// Whether this is the lock of that project, whatever path leads there.
    bool isOn(const QString &projectFile) const;
    /// Who has the project, in words for the operator, after acquire() has failed.
    QString refusal() const;

private:
    StationLock m_lock;
};
