#pragma once

#include "project/StationLock.h"

/// Keeps a recording to one project that is open: a copy of a project file names the recording of its original.
class RecordingLock
{
public:
    explicit RecordingLock(const QString &databaseFile);

    /// False while another project, here or in another station, has the recording; see StationLock. A folder is no
    /// recording and is not locked.
    bool acquire();
    /// Whether this is the lock of that recording, whatever path leads there.
    bool isOn(const QString &databaseFile) const;
    /// Who has the recording, in words for the operator, after acquire() has failed.
    QString refusal() const;

private:
    QString m_databaseFile;
    StationLock m_lock;
};
