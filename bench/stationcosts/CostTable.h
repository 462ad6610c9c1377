#pragma once

#include <QList>
#include <QString>

/// The figures of a run, each beside its goal and, where there is one, a reference measured in the same run.
class CostTable
{
public:
    enum class Verdict { Met, Missed, None };

    void add(const QString &figure, const QString &goal, const QString &measured, Verdict verdict,
             const QString &reference = {});
    /// A figure without a goal.
    void addRemark(const QString &figure, const QString &measured, const QString &reference = {});
    QString toText() const;

    static Verdict verdict(bool met) { return met ? Verdict::Met : Verdict::Missed; }

private:
    QList<QStringList> m_rows;
};
