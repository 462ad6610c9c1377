#pragma once

#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QAudioOutput>
using AudioOutput = QAudioOutput;
#else
#include <QAudioSink>
using AudioOutput = QAudioSink;
#endif

/// An output on the default device that takes the samples of the alarm (44100 Hz, two channels, 16 bit, little-endian),
/// owned by @p parent; null when there is none.
AudioOutput *openAudioOutput(QObject *parent);

/// Sound servers are fed in periods of 20 ms, and one of them (PulseAudio) waits for ever for the rest of a buffer that
/// is not whole periods.
constexpr int signedBufferBytes = 3 * 44100 * 4 / 50;
