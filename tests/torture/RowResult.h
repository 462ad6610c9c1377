#pragma once

#include "ReadingAudit.h"

#include <QByteArray>
#include <QStringList>
#include <optional>

/// What came of a row of the table, or of a part of it.
struct RowResult
{
    int rounds = 0;
    qint64 served = 0;
    qint64 shown = 0;
    qint64 recorded = 0;
    int lost = 0;
    int doubled = 0;
    int unsound = 0;      ///< recordings that did not pass the integrity check
    QStringList findings; ///< anything that is not as it should be, with what it takes to find it again
    QStringList remarks;  ///< figures that are no fault

    bool isClean() const { return findings.isEmpty() && lost == 0 && doubled == 0 && unsound == 0; }
    void add(const RowResult &other);
    void add(const ReadingAudit::Verdict &verdict);

    QByteArray toLine() const;
    static std::optional<RowResult> fromLine(const QByteArray &line);
};
