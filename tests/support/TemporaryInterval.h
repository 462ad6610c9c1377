#pragma once

#include "device/DataInterval.h"

/// Sets the program-wide data interval for one scope.
class TemporaryInterval
{
public:
    explicit TemporaryInterval(qint32 ms) : m_before(dataIntervalMs) { dataIntervalMs = ms; }
    ~TemporaryInterval() { dataIntervalMs = m_before; }
    TemporaryInterval(const TemporaryInterval &) = delete;
    TemporaryInterval &operator=(const TemporaryInterval &) = delete;

private:
    qint32 m_before;
};
