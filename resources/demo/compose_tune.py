#!/usr/bin/env python3
"""Composes "Lanterns on Still Water", the demo tune: the score, the players, the mix, the master.

    compose_tune.py OUTPUT.opus [--wav FILE]      needs python3-numpy and gst-launch-1.0 with opusenc

Every run computes the same samples. Left and right are kept apart on purpose: a picture of the two
channels should not be a mirror.
"""
import argparse, subprocess, tempfile, wave
from pathlib import Path
import numpy as np
import instruments as band
from instruments import RATE, held, midi, noise, pan, times

TITLE, ARTIST = "Lanterns on Still Water", "the Halvenor authors"
BEAT = 0.5                      # seconds; 120 beats a minute, so that a bar is two seconds
STEP, BAR = BEAT / 4, BEAT * 4  # a sixteenth, a bar
SWING = 0.014                   # seconds that every second sixteenth comes late
TAIL = 4.0                      # seconds for the last chord to die away in

# ---------------------------------------------------------------------------------------- score

CHORDS = {  # the bass note, then what the pad and the keys hold
    "Dm9": "d2 f3 a3 c4 e4", "Bbmaj9": "bb1 f3 a3 c4 d4", "Fadd9": "f2 g3 a3 c4 f4", "Cadd9": "c2 g3 c4 d4 e4",
    "Gm9": "g1 f3 a3 bb3 d4", "Dm/F": "f2 f3 a3 d4 a4", "Bbmaj7": "bb1 f3 a3 d4 f4", "A7": "a1 e3 a3 e4 g4",
    "Bb": "bb1 f3 bb3 c4 d4", "C6": "c2 g3 a3 c4 e4", "Am7": "a1 a3 c4 e4 g4", "B7": "b1 a3 d#4 f#4 b4",
    "Em9": "e2 g3 b3 d4 f#4", "Cmaj9": "c2 g3 b3 d4 e4", "Gadd9": "g1 g3 a3 b3 d4", "D/F#": "f#1 f#3 a3 d4 e4",
    "D": "d2 f#3 a3 d4 e4", "E": "e1 g#3 b3 e4 f#4",
}
# A word of a row is a bar of sixteen steps, and a row shorter than its part repeats. Drums: a digit is
# a stroke, 9 the hardest. Bass: Root, 5th, Octave. Tunes are in eighths. '-' holds on, '.' rests.
# A chord lasts `hold` bars. A voice's number is its gain, its _cut the filter's frequency in Hz.
REST = " ................"
SONG = [
    dict(name="intro", chords="Dm9 Bbmaj9", pad=.8, pad_cut=1400, air=.5, arp=.8, arp_cut=1500, bell=.8,
         bell_line="a5 - - - e6 - - -  d6 - - - - - . .",
         hat=REST + " ..2...3...4.4.56"),
    dict(name="pulse", chords="Fadd9 Cadd9", pad=.8, pad_cut=2400, air=.7, arp=1, arp_cut=3500,
         bass="R-------R--.R.O.", bass_cut=500,
         kick="9...9...9...9... 9...9...9...9.9.", hat="..7...7...7...7.", shaker="4243424342434243",
         tom=REST + " ........6.7.8899"),
    dict(name="groove", chords="Dm9 Bbmaj9 Fadd9 Cadd9 Dm9 Bbmaj9 Fadd9 Cadd9", pad=.6, pad_cut=2200, air=.5,
         arp=.6, arp_cut=2600, keys=1, lead=.9, lead_cut=2600,
         lead_line="a4 - - c5 d5 - f5 -  d5 - - c5 a4 - - .  a4 - - c5 d5 - c5 a4  g4 - - - . . e4 f4 "
                   "a4 - - c5 d5 - f5 g5  a5 - - g5 f5 - d5 -  f5 - e5 - c5 - a4 c5  d5 - - - - - - .",
         bass="R--..R.O..R-.5O.", bass_cut=1100,
         kick="9.....9.9....... 9.....9.9..7....", snare="....8.......8... ....8..3....8..4",
         hat="7.5.7.5.7.5.7.55", open="..............7. " + REST, shaker="3243324332433243",
         crash="9..............." + 7 * REST, tom=7 * REST + " ........8.77669."),
    dict(name="quiet", chords="Gm9 Dm/F Bbmaj7 A7", pad=.45, pad_cut=1000, air=.25, bell=.55,
         bell_line="d6 - - a5 - - bb5 -  a5 - - - f5 - e5 -  d6 - - f6 - - a5 -  d6 - - - c#6 - - -",
         bass="R--------------.", bass_cut=60, bass_gain=.5),
    dict(name="build", chords="Bb C6 Am7 B7", pad=.8, pad_cut=2600, arp=.8, arp_cut=4500, climb=True, sweep=True,
         bass="R.R.R.R.R.R.R.R. R.R.R.R.R.R.R.R. R.R.R.R.R.R.R.R. RRRRRRRRRRRR....", bass_cut=700,
         kick="9.......9....... 9...9...9...9... 9...9...9...9... 9.9.9.9.9.9.....",
         snare=REST + REST + " 3...3...4...4... 4.4.5.5.66778...",
         hat="2.2.2.2.3.3.3.3. 4.4.4.4.5.5.5.5. 5555555566666666 666666667777...."),
    dict(name="chorus", chords="Em9 Cmaj9 Gadd9 D/F# Cmaj9 D Em9 B7", pad=1, pad_cut=4200, air=1,
         arp=1, arp_cut=6000, keys=.9, lead=1.1, lead_cut=5200, harmony=.8,
         lead_line="b4 - e5 f#5 - g5 - b5  - - a5 g5 - e5 - d5  b4 - d5 e5 - g5 - a5  - - g5 f#5 - d5 - . "
                   "e5 - g5 b5 - d6 - b5  a5 - - f#5 a5 - d6 -  e6 - - d6 b5 - g5 -  a5 - f#5 - d#5 - f#5 -",
         bass="R.OR.OR.R.OR.OO5", bass_cut=1800,
         kick="9...9...9...9...", snare="....9.......9... ....9.......9..5", clap="....9.......9...",
         hat="7.4.7.4.7.4.7.46", open="..9...9...9...9.", shaker="6364636463646364",
         crash="9..............." + 3 * REST, tom=7 * REST + " ........9.88779."),
    dict(name="ending", chords="E", hold=2, pad=.9, pad_cut=3000, air=.7, keys=1, bell=1, lead=.8, lead_cut=3000,
         bell_line="e5 g#5 b5 f#6 g#6 - b6 -", lead_line="e5 - - - - - - .",
         bass="R" + 31 * "-", bass_cut=900, kick="9..............." + REST, crash="9..............." + REST),
]
COMPING = (0, 3, 6, 10, 14)        # the steps on which the keys come in
LADDER = (0, 2, 1, 3, 5, 4, 6, 3)  # the rungs of the chord that the arpeggio takes

# -------------------------------------------------------------------------------------- players


def notes_of(row, unit):
    """(start, length, token) of every note in a list of tokens."""
    notes = []
    for i, token in enumerate(row):
        if token == "-":
            notes[-1][1] += unit
        elif token != ".":
            notes.append([i * unit, unit, token])
    return notes


def swung(step):
    return step * STEP + SWING * (step % 2)


class Tape:
    """A stereo track for each voice."""

    def __init__(self, seconds):
        self.length, self.tracks, self.kicks = int(seconds * RATE), {}, []

    def add(self, voice, at, sound, gain=1.0):
        track, first = self.tracks.setdefault(voice, np.zeros((2, self.length))), int(at * RATE)
        sound = gain * sound[:, : self.length - first]
        sound[:, -240:] *= np.linspace(1, 0, 240)  # however it was cut, it ends at zero
        track[:, first : first + sound.shape[1]] += sound


def play_drums(tape, part, start, bars):
    for drum, stroke in band.DRUMS.items():
        row = part.get(drum, "").replace(" ", "")
        for step in range(16 * bars if row else 0):
            force = row[step % len(row)]
            if force == ".":
                continue
            tape.add(drum, start + swung(step), stroke(step), (int(force) / 9) ** 1.5)
            if drum == "kick":
                tape.kicks.append(start + swung(step))


def play_chord(tape, part, bar, start, seconds):
    root, *notes = map(midi, CHORDS[part["chords"].split()[bar]].split())
    last = part["name"] == "ending"
    if "pad" in part:
        for note in notes:
            tape.add("pad", start, band.pad(note, seconds + (2.5 if last else 0.4), part["pad_cut"]), part["pad"])
    if "air" in part:
        tape.add("air", start, band.air(seconds + 1), part["air"])
    if "bass" in part:
        rows = part["bass"].split()
        for at, length, token in notes_of(rows[bar % len(rows)], STEP):
            note = band.bass(root + {"R": 0, "5": 7, "O": 12}[token], length, part["bass_cut"])
            tape.add("bass", start + at, note, part.get("bass_gain", 1))
    if "keys" in part:
        for step in (0,) if last else COMPING:
            for note in notes:
                tape.add("keys", start + swung(step), band.keys(note + 12, 0.5 if step else 3.0), part["keys"])
    if "arp" in part:
        ladder, climb = [n + o for o in (12, 24, 36) for n in notes], part.get("climb")
        for step in range(12 if climb and bar == 3 else 16):  # a climb stops for breath before the chorus
            rung = LADDER[step % 8] + (bar if climb else 0)
            side = 0.8 if step % 2 else -0.8
            tape.add("arp", start + swung(step), pan(band.pluck(ladder[rung], part["arp_cut"]), side), part["arp"])


def play_tunes(tape, part, start):
    for i, (at, _, name) in enumerate(notes_of(part.get("bell_line", "").split(), BEAT / 2)):
        tape.add("bell", start + at, pan(band.bell(midi(name)), -0.7 if i % 2 else 0.7), part["bell"])
    for at, length, name in notes_of(part.get("lead_line", "").split(), BEAT / 2):
        tape.add("lead", start + at, band.lead(midi(name), length + 0.05, part["lead_cut"]), part["lead"])
        if "harmony" in part:  # the nearest note of the chord at least a third below
            chord = CHORDS[part["chords"].split()[int(at // BAR)]].split()[1:]
            reach = [midi(n) + o for n in chord for o in (0, 12, 24)]
            below = max(n for n in reach if n <= midi(name) - 3)
            tape.add("harmony", start + at, band.lead(below, length + 0.05, part["lead_cut"]), part["harmony"])


def perform():
    bars = sum(len(part["chords"].split()) * part.get("hold", 1) for part in SONG)
    tape, start = Tape(bars * BAR + TAIL), 0.0
    for part in SONG:
        print(f"{start:6.1f} s  {part['name']}")
        chords, hold = len(part["chords"].split()), part.get("hold", 1)
        for bar in range(chords):
            play_chord(tape, part, bar, start + bar * hold * BAR, hold * BAR)
        play_drums(tape, part, start, chords * hold)
        play_tunes(tape, part, start)
        if part.get("sweep"):
            tape.add("sweep", start, band.sweep(chords * BAR - BEAT))
            tape.add("riser", start, band.riser(chords * BAR - BEAT))
        start += chords * hold * BAR
    return tape


# -------------------------------------------------------------------------------- mix and master

DESK = {  # fader in dB, then what goes to the echo, what to the room, and how far each kick pushes it down
    "kick": (-3, 0, 0, 0), "snare": (-2, 0, .15, 0), "clap": (-6, 0, .2, 0), "tom": (-7, 0, .3, 0),
    "hat": (0, 0, .03, 0), "open": (-7, 0, .05, 0), "shaker": (-1, .05, .05, 0), "crash": (-8, 0, .2, 0),
    "bass": (-11, 0, 0, .4), "pad": (-27, 0, .3, .6), "air": (-32, 0, .2, .7), "keys": (-20, .15, .2, .4),
    "arp": (-14, .45, .25, .3), "bell": (-15, .5, .6, 0), "lead": (-15, .35, .22, .1), "harmony": (-17, .3, .22, .1),
    "sweep": (-14, 0, .25, 0), "riser": (-30, 0, .2, 0), "echo": (0, 0, .3, .2), "room": (-3, 0, 0, .3),
}


def ping_pong(send):
    """Echoes a dotted eighth apart, from side to side."""
    out, delay = np.zeros_like(send), int(0.75 * BEAT * RATE)
    for n in range(1, 6):
        out[n % 2, n * delay :] += 0.62**n * send.sum(axis=0)[: -n * delay]
    return out


def room(send, seconds=2.4):
    """Convolution with a decaying noise, each side its own, duller as it dies."""
    t, size = times(seconds), 2 ** (send.shape[1] + int(seconds * RATE)).bit_length()
    for side in range(2):
        answer = noise(seconds, 300, 14000) * np.exp(-t / 0.2) + 0.6 * noise(seconds, 300, 4000) * np.exp(-t / 0.5)
        answer *= held(seconds, 0.012, 0.5) / np.linalg.norm(answer)
        wet = np.fft.irfft(np.fft.rfft(send[side], size) * np.fft.rfft(answer, size), size)
        send[side] = wet[: send.shape[1]]
    return send


def autopan(sound, period):
    swing = np.sin(2 * np.pi * np.arange(sound.shape[1]) / RATE / period)
    return sound * [1 + 0.8 * swing, 1 - 0.8 * swing]


def mix(tape):
    tracks = {voice: track * 10 ** (DESK[voice][0] / 20) for voice, track in tape.tracks.items()}
    tracks["keys"] = autopan(tracks["keys"], 3 * BEAT)
    tracks["harmony"] *= [[0.3], [1.0]]
    tracks["lead"] *= [[1.0], [0.75]]
    for effect, play, send in (("echo", ping_pong, 1), ("room", room, 2)):
        wet = play(sum(track * DESK[voice][send] for voice, track in tracks.items()))
        tracks[effect] = wet * 10 ** (DESK[effect][0] / 20)
    push, dip = np.zeros(tape.length), held(0.3, 0.004, 0.296) ** 1.5
    for at in tape.kicks:
        here = slice(int(at * RATE), int(at * RATE) + len(dip))
        push[here] = np.maximum(push[here], dip)
    return sum(track * (1 - DESK[voice][3] * push) for voice, track in tracks.items())


def limit(sound, ceiling, window=256):
    """Looks ahead: the smallest gain needed nearby, averaged over as long, is never too large."""
    peak = np.pad(np.abs(sound).max(axis=0), window - 1)
    needed = np.minimum(1, ceiling / np.maximum(peak, ceiling / 2**8))
    lowest = np.lib.stride_tricks.sliding_window_view(needed, window).min(axis=1)
    curve = np.hanning(window + 2)[1:-1]
    return sound * np.convolve(lowest, curve / curve.sum(), "valid")


def master(sound, drive=0.74, ceiling=0.77):
    """Rounds the peaks, then holds them low enough that the encoder's own overshoot stays below full scale."""
    return limit(np.tanh(drive * sound), ceiling) * held(sound.shape[1] / RATE, 0, 1.5)


def write(sound, wav, opus):
    with wave.open(str(wav), "wb") as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(np.round(sound.T * 32767).astype("<i2").tobytes())
    tags = f'"title=\\"{TITLE}\\",artist=\\"{ARTIST}\\""'
    stages = (["filesrc", f"location={wav}"], ["wavparse"], ["audioconvert"], ["taginject", f"tags={tags}"],
              ["opusenc", "bitrate=144000", "bitrate-type=vbr"], ["oggmux"], ["filesink", f"location={opus}"])
    words = [word for stage in stages for word in (*stage, "!")]
    subprocess.run(["gst-launch-1.0", "-q", *words[:-1]], check=True)


if __name__ == "__main__":
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("output", type=Path)
    options.add_argument("--wav", type=Path, help="also keep the uncompressed sound here")
    options = options.parse_args()
    with tempfile.TemporaryDirectory() as scratch:
        write(master(mix(perform())), options.wav or Path(scratch) / "tune.wav", options.output)
