#pragma once

#include "app/AudioOutput.h"

#include <QAudio>
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <memory>

/// The alarm that sounds, over and over, for as long as any channel is out of its range.
/// Without a sound device everything but setUp() does nothing.
/// Its destruction handles pending events (the toolkit's output does), so an owner deletes it before anything they
/// concern.
class AlarmSound : public QObject
{
    Q_OBJECT

public:
    explicit AlarmSound(QObject *parent = nullptr, const QString &soundFile = QStringLiteral("://critical.wav"));
    ~AlarmSound() override;

    /// Opens the default output and the sound; to be called once. On failure setUpFailed() is emitted before it returns
    /// false, and the alarm stays silent for good.
    bool setUp();

    /// To be called once a second: begins the next play if the last one has ended, or stops it.
    void setAlarm(bool active);
    void stop();

signals:
    /// Title and text of the box to show to the operator.
    void setUpFailed(const QString &title, const QString &text);
    /// The output's own state: active while a play lasts, idle when it has reached its end.
    void stateChanged(QAudio::State state);

private:
    bool openOutput();
    bool openFile();
    bool isPlaying();

    /// Never at its end for the output: Qt 6 has the server tell it then when the last sample was played, and is told
    /// even if it was destroyed meanwhile.
    class SoundFile : public QFile
    {
    public:
        using QFile::QFile;
        bool atEnd() const override { return false; }
        bool isReadToItsEnd() const { return QFile::atEnd(); }
    };

    SoundFile m_audioFile;
    QElapsedTimer m_sinceEnd;                   // since the file of this play was first seen to be at its end
    std::unique_ptr<AudioOutput> m_audioOutput; // reads from the file, so it goes first
};
