#!/usr/bin/env python3
"""Writes critical.wav, the alarm sound: two tones in turn, 0.9 seconds.

A little shorter than the second in which the station looks at the alarms again, so that every look finds the sound
finished and starts it anew. Each tone fills its slot with whole cycles, so that nothing clicks between them. Run by
hand; the result is the same to the byte everywhere and is kept in the repository.
"""

import math
import pathlib
import struct
import wave

RATE = 44100
TONES_HZ = (880, 1180)
SLOT_FRAMES = 6615  # 0.15 s: 132 and 177 whole cycles
SLOTS = 6
FADE_FRAMES = 220
PEAK = 16384
# A square wave cut off after its fifth harmonic: shrill enough to be heard through the noise of a plant room.
HARMONICS = ((1, 1.0), (3, 1 / 3), (5, 1 / 5))
SCALE = max(sum(a * math.sin(h * math.tau * i / 1000) for h, a in HARMONICS) for i in range(1000))


def sample(frame: int, frames: int) -> int:
    slot, offset = divmod(frame, SLOT_FRAMES)
    phase = math.tau * TONES_HZ[slot % len(TONES_HZ)] * offset / RATE
    fade = min(1.0, frame / FADE_FRAMES, (frames - 1 - frame) / FADE_FRAMES)
    return round(PEAK * fade * sum(a * math.sin(h * phase) for h, a in HARMONICS) / SCALE)


def main() -> None:
    frames = SLOT_FRAMES * SLOTS
    samples = (sample(frame, frames) for frame in range(frames))
    with wave.open(str(pathlib.Path(__file__).with_name("critical.wav")), "wb") as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(b"".join(struct.pack("<hh", s, s) for s in samples))


if __name__ == "__main__":
    main()
