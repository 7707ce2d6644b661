#!/usr/bin/env python3
"""Makes pluck.wav: a plucked string after Karplus and Strong (1983), four notes, 22.05 kHz, one channel."""

import random
import struct
import wave
from pathlib import Path

RATE = 22050


def pluck(frequency, seconds, source):
    """A burst of noise in a loop that averages neighbours: it rings at the loop's rate and dulls as it fades."""
    ring = [source.uniform(-1, 1) for _ in range(round(RATE / frequency))]
    samples = []
    for i in range(int(RATE * seconds)):
        at = i % len(ring)
        samples.append(ring[at])
        ring[at] = 0.498 * (ring[at] + ring[(at + 1) % len(ring)])
    return samples


def main():
    source = random.Random(1983)
    samples = [0.7 * each for note in (110.0, 146.8, 196.0, 164.8) for each in pluck(note, 0.6, source)]
    with wave.open(str(Path(__file__).parent / "pluck.wav"), "wb") as file:
        file.setparams((1, 2, RATE, 0, "NONE", ""))
        file.writeframes(b"".join(struct.pack("<h", int(32767 * each)) for each in samples))


main()
