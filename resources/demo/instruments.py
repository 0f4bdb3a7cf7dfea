"""The instruments of the demo tune: everything is computed, nothing is sampled.

Tones are sums of harmonics, so nothing aliases and a filter is merely a weight on each harmonic; noise
is shaped with the Fourier transform. A sound is an array of samples, mono, or stereo with two rows.
"""
import functools, re
import numpy as np

RATE = 48000
RANDOM = np.random.default_rng(1)

# ---------------------------------------------------------------------------------------- tools


def times(seconds):
    return np.arange(int(seconds * RATE)) / RATE


def midi(name):
    letter, accidental, octave = re.fullmatch(r"([a-g])([#b]?)(\d)", name).groups()
    return 12 * (int(octave) + 1) + "c d ef g a b".index(letter) + {"#": 1, "b": -1, "": 0}[accidental]


def hz(note):
    return 440.0 * 2 ** ((note - 69) / 12)


def held(seconds, attack, release):
    """An envelope that rises, stays, and is back at zero when the time is up."""
    return np.interp(times(seconds), [0, attack, seconds - release, seconds], [0, 1, 1, 0])


def struck(seconds, decay, attack=0.002):
    """An envelope that rises at once and dies away, to zero too when the time is up."""
    t = times(seconds)
    return (1 - np.exp(-t / attack)) * np.exp(-t / decay) * np.minimum(1, 4 * (1 - t / seconds))


def saw(frequency, cutoff, start=0.0):
    """A sawtooth through a 12 dB/octave low-pass; frequency and cutoff are arrays over time."""
    phase = 2 * np.pi * (np.cumsum(frequency) / RATE + start)
    now, before, twice_cosine = np.sin(phase), np.zeros_like(phase), 2 * np.cos(phase)
    out, square = np.zeros_like(phase), (frequency / cutoff) ** 2
    for k in range(1, int(min(19500, 6 * cutoff.max()) / frequency.max()) + 1):
        out += now / (k * (1 + k * k * square))
        now, before = twice_cosine * now - before, now  # sin(k+1)x from sin kx and sin(k-1)x
    return out


def noise(seconds, low, high):
    """White noise between two frequencies, at an rms of 1."""
    white = np.fft.rfft(RANDOM.standard_normal(int(seconds * RATE)))
    f = np.maximum(np.fft.rfftfreq(int(seconds * RATE), 1 / RATE), 1)
    out = np.fft.irfft(white / (1 + (low / f) ** 8) / (1 + (f / high) ** 8), int(seconds * RATE))
    return out / np.sqrt(np.mean(out**2))


def pan(sound, where):
    """A mono sound at equal power; where runs from -1 (left) to 1 (right) and may move."""
    angle = (np.asarray(where) + 1) * np.pi / 4
    return np.stack([np.cos(angle) * sound, np.sin(angle) * sound])


# ---------------------------------------------------------------------------------- instruments


def kick():
    t = times(0.45)
    body = np.sin(2 * np.pi * (46 * t + 5.2 * (1 - np.exp(-t / 0.028)))) * struck(0.45, 0.16)
    return pan(body + 0.12 * noise(0.45, 2500, 9000) * struck(0.45, 0.004, 0.0005), 0)


def snare():
    t = times(0.35)
    skin = np.sin(2 * np.pi * (182 * t + 0.9 * (1 - np.exp(-t / 0.02)))) * struck(0.35, 0.07)
    wires = [0.3 * noise(0.35, 1400, 12000) * struck(0.35, 0.075) for _ in "LR"]
    return 0.5 * pan(skin, 0) + wires


def clap():
    hands = sum(np.roll(struck(0.4, 0.010 if d < 0.03 else 0.09), int(d * RATE)) * (times(0.4) >= d)
                for d in (0, 0.011, 0.021, 0.032))
    return np.stack([0.3 * noise(0.4, 900, 8000) * hands for _ in "LR"])


def hat(decay):
    """Six tones that agree on nothing, and hiss."""
    t = times(6 * decay)
    metal = sum(np.sin(2 * np.pi * f * t + f) for f in (8210, 9130, 10870, 12430, 14350, 16910))
    return (0.12 * metal + 0.3 * noise(6 * decay, 8000, 20000)) * struck(6 * decay, decay)


def shaker():
    return 0.3 * noise(0.1, 5000, 17000) * held(0.1, 0.03, 0.06)


def tom(place):
    """Toms stand from left (-1, high) to right (1, low)."""
    t = times(0.5)
    return pan(np.sin(2 * np.pi * ((150 - 65 * place) * t + 1.6 * (1 - np.exp(-t / 0.05)))) * struck(0.5, 0.14), place)


def crash():
    return np.stack([0.4 * noise(3, 3500, 20000) * struck(3, 0.7) + 0.3 * noise(3, 600, 4000) * struck(3, 0.2)
                     for _ in "LR"])


# A stroke is told the step of the bar that it falls on.
DRUMS = {
    "kick": lambda step: kick(), "snare": lambda step: snare(), "clap": lambda step: clap(),
    "crash": lambda step: crash(), "hat": lambda step: pan(hat(0.03), -0.55),
    "open": lambda step: pan(hat(0.11), 0.35), "shaker": lambda step: pan(shaker(), 0.75),
    "tom": lambda step: tom((step % 16 - 8) / 3.5 - 1),
}


@functools.lru_cache(maxsize=None)
def bass(note, seconds, bright):
    t, steady = times(seconds), np.full(int(seconds * RATE), hz(note))
    deep, growl = np.sin(2 * np.pi * hz(note) * t), saw(steady, 90 + bright * np.exp(-t / 0.13))
    return pan((0.55 * deep + 0.6 * growl) * np.exp(-t / 1.8) * held(seconds, 0.004, 0.03), 0)


@functools.lru_cache(maxsize=None)
def pad(note, seconds, bright):
    """Four detuned voices, two a side, whose filters breathe in turn."""
    t, sides = times(seconds), []
    for side, detunes in ((0, (-0.09, 0.05)), (1, (-0.04, 0.08))):
        cutoff = bright * (1 + 0.45 * np.sin(2 * np.pi * t / 8 + np.pi * side))
        sides.append(sum(saw(np.full(len(t), hz(note + d)), cutoff, start=(7 * d + 0.3 * note + side / 3) % 1)
                         for d in detunes))
    return np.stack(sides) * held(seconds, 0.25, max(0.5, seconds - 4))


def air(seconds):
    """What shimmers above a pad: hiss that comes and goes, each side in its own time."""
    swell = [0.6 + 0.4 * np.sin(2 * np.pi * times(seconds) / 1.5 + phase) for phase in (0, 2)]
    return np.stack([noise(seconds, 7000, 19000) * s for s in swell]) * held(seconds, 0.5, seconds / 2)


@functools.lru_cache(maxsize=None)
def keys(note, seconds):
    """An electric piano by frequency modulation: a soft body and the ting of the tine."""
    x, e = 2 * np.pi * hz(note) * times(seconds), struck(seconds, 0.5)
    body = np.sin(x + 1.3 * e * np.sin(x)) * e
    return pan((body + 0.12 * np.sin(14 * x) * struck(seconds, 0.05)) * held(seconds, 0, 0.05), 0)


@functools.lru_cache(maxsize=None)
def pluck(note, bright):
    steady, t = np.full(int(0.5 * RATE), hz(note)), times(0.5)
    return saw(steady, 300 + bright * np.exp(-t / 0.09)) * struck(0.5, 0.16)


@functools.lru_cache(maxsize=None)
def lead(note, seconds, bright):
    t = times(seconds)
    vibrato = 1 + 0.006 * np.clip((t - 0.2) / 0.3, 0, 1) * np.sin(2 * np.pi * 5.3 * t)
    voices = [saw(hz(note + d) * vibrato, bright * (1 + np.exp(-t / 0.1)), start=3 * d) for d in (-0.07, 0, 0.06)]
    left, right = 0.8 * voices[0] + 0.6 * voices[1], 0.6 * voices[1] + 0.8 * voices[2]
    return np.stack([left, right]) * held(seconds, 0.012, 0.06) * (0.7 + 0.3 * np.exp(-t / 0.25))


@functools.lru_cache(maxsize=None)
def bell(note):
    t = times(3)
    partials = ((0.5, 0.3, 1.6), (1, 1, 1.1), (2.76, 0.45, 0.6), (5.4, 0.22, 0.3), (8.93, 0.14, 0.16), (13.3, .1, .1))
    return sum(a * np.sin(2 * np.pi * r * hz(note) * t) * struck(3, d) for r, a, d in partials if r * hz(note) < 19000)


def sweep(seconds):
    """A sine from 40 Hz to 20 kHz, in less haste toward the top, softer where ears are keen."""
    x = times(seconds) / seconds
    frequency = 40 * 500 ** (1 - (1 - x) ** 1.5)
    keen = np.exp(-((np.log2(frequency / 3200)) ** 2) / 3)
    tone = np.sin(2 * np.pi * np.cumsum(frequency) / RATE) * (1 - 0.72 * keen) * held(seconds, 0.5, 0.03)
    return pan(tone, 0.8 * np.sin(2 * np.pi * (1.5 * x + 3.5 * x**3)))


def riser(seconds):
    """Hiss to which one band after the other is added, upwards."""
    x = times(seconds) / seconds
    bands = ((300, 1200), (1200, 4000), (4000, 10000), (10000, 19000))
    sides = [sum(noise(seconds, low, high) * np.clip(1.6 * x - 0.3 * i, 0, 1) ** 2
                 for i, (low, high) in enumerate(bands)) for _ in "LR"]
    return np.stack(sides) * held(seconds, 0.1, 0.02)
