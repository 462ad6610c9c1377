#pragma once

#include "support/RecordedRows.h"

#include <QMap>
#include <QProcess>
#include <QStringList>

/// The simulator's program in the loggers' network, with network loggers that answer searches on 10.77.0.2, .3 and so
/// on, port 23.
class LoggerProcess
{
public:
    /// Readings served so far, by logger.
    using Counts = QMap<QString, int>;

    /// @p folder is for its files.
    explicit LoggerProcess(const QString &folder) : m_folder(folder) {}
    ~LoggerProcess();
    LoggerProcess(const LoggerProcess &) = delete;
    LoggerProcess &operator=(const LoggerProcess &) = delete;

    bool start(int loggers);
    /// Logger @p number, from 1.
    static QString key(int number);
    static QString address(int number) { return QStringLiteral("10.77.0.%1").arg(number + 1); }

    /// One control line; its answer without the last line end.
    QByteArray control(const QByteArray &line);

    Counts served() const;
    /// What is wrong with the rows of one recording: every reading that was served between its start and its end must
    /// be there, in order, those of the moments of starting and stopping excepted. Empty when nothing is.
    QByteArray differences(const QList<RecordedRow> &rows, const Counts &start, const Counts &end) const;

private:
    QString differences(const QString &key, const QList<RecordedRow> &rows, int start, int end) const;
    QStringList readingsOf(const QString &key) const;

    const QString m_folder;
    QProcess m_process;
    QByteArray m_output;
};

/// The rows by time of recording number @p index, from 0, of a file's rows as they were stored: rows without values end
/// the series of a logger. By time they would not tell: they lie a second after the last reading, and a station that is
/// started again within that second polls before it.
QList<RecordedRow> recordingOf(const QList<RecordedRow> &rows, int index);
