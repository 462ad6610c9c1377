#pragma once

#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QAudioOutput>
using AudioOutput = QAudioOutput;
#else
#include <QAudioSink>
using AudioOutput = QAudioSink;
#endif

class QIODevice;
class QObject;

/// An output on the default device that takes the samples of the alarm (44100 Hz, two channels, 16 bit, little-endian),
/// owned by @p parent; null when there is none.
AudioOutput *openAudioOutput(QObject *parent);

/// Plays @p sound from where it stands; it must outlive the play.
void startAudioOutput(AudioOutput &output, QIODevice *sound);
