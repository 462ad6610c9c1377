#pragma once

#include <QtGlobal>

/// What the system tells about a running program.
struct MemoryUse
{
    double pssMiB = 0;       ///< with its share of what it has in common with other programs
    double rssMiB = 0;       ///< with all of it
    double anonymousMiB = 0; ///< what comes from no file: heap and stacks
};

/// Asking makes the program wait for a moment: not within a measurement.
MemoryUse memoryOf(qint64 processId);
/// Resident memory alone, without disturbing the program.
double residentMiB(qint64 processId);
/// Processor time of all its threads, in the program and in the system on its behalf.
double processorSeconds(qint64 processId);
