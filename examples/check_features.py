#!/usr/bin/env python3
"""Checks the numbers that `features` writes: check_features.py PROGRAM

Computes the features of recordings a second time, in double precision and from the formulas of the textbooks, with
nothing but Python's standard library, and compares every element of both output formats. Recordings: one of Debian's
package alsa-utils, and sounds that are made here.

Every stage hands on its values and how far single precision is from them. Roundings are taken as independent, so that
their bounds add in quadrature, written (+); what many elements share adds as it is. At worst an error is uniform within
its bound, with the standard deviation bound / sqrt(3): four times the sum, which is allowed, are seven deviations. With
u = 2^-24, half a unit in the last place:

  emphasised  u |a x[n-1]| (+) u |y| for the product and the difference
  windowed    |w| times the bound before (+) 2 u |w y| for window and product
  spectrum    the 2-norm of what came in, the same in every bin, (+) u sqrt(log2 N) of the frame's 2-norm, the error of
              a fast transform (Schatzman, SIAM J. Sci. Comput. 17(5), 1996)
  magnitude   the bound of the bin (+) 2 u |X| for squares, sum and root; powers: 2 |X| b + b^2 (+) 2 u |X|^2
  bank        weights times bounds (+) u of every partial sum (+) what the edges are off: they and the mel of a bin come
              from numbers up to melHigh with up to four roundings each, 4 u melHigh over the width of a side
  logarithm   bound / energy, linear, from the energy less its bound (+) 3 u |value| for function and base
  cepstra     cosines times bounds (+) 2 u of every product and u of every partial sum, times the weight; 3 u |value|
  deltas      gain times t times bounds (+) 3 u of the differences
  mean        mean of bounds (+) u of every partial sum over the number of rows; u of the difference

Text has six digits: half a unit of the sixth, and it has to be what the same single precision number prints as.
"""

import ast
import functools
import math
import os
import random
import re
import struct
import subprocess
import sys
import tempfile
import wave
from itertools import accumulate
from operator import mul

U = 2.0**-24
ALLOWED = 4  # times the bound

norm = math.hypot


def single(x):
    """The nearest number of single precision: what the program takes an option for."""
    return struct.unpack("<f", struct.pack("<f", x))[0]


class Settings:
    """The program's defaults, changed by options as they stand on its command line."""

    def __init__(self, options):
        self.window_length, self.frame_shift = 25.0, 10.0
        self.window, self.preemphasis = "hamming", 0.97
        self.num_filters, self.low_freq, self.high_freq = 26, 64.0, 0.0
        self.mel_mul, self.mel_div, self.shape = 1127.01, 700.0, "mel"
        self.spectrum, self.log, self.energy_floor = "magnitude", "e", 1.0
        self.num_ceps, self.no_c0, self.lifter, self.dct_scale = 12, False, 22, "htk"
        self.derivatives, self.delta_window, self.remove_mean = 2, 2, False
        words = iter(options.split())
        for word in words:
            name = word.removeprefix("--").replace("-", "_")
            before = getattr(self, name)
            setattr(self, name, True if before is False else type(before)(next(words)))


# ------------------------------------------------------------------------------------------------------- reference


def read_samples(path):
    """Samples on the 16-bit scale, channels averaged."""
    with wave.open(path) as sound:
        channels = sound.getnchannels()
        values = struct.unpack(f"<{sound.getnframes() * channels}h", sound.readframes(sound.getnframes()))
        return sound.getframerate(), [sum(values[i : i + channels]) / channels for i in range(0, len(values), channels)]


def windowed_frames(path, window_length, frame_shift, window, preemphasis):
    rate, samples = read_samples(path)
    length = math.floor(window_length * rate / 1000 + 0.5)
    shift = math.floor(frame_shift * rate / 1000 + 0.5)
    a = single(preemphasis)
    before = samples[:1] + samples[:-1]  # the first sample is its own predecessor
    emphasised = [x - a * p for x, p in zip(samples, before)]
    bounds = [U * norm(a * p, y) for y, p in zip(emphasised, before)]
    offset = {"none": 1.0, "hamming": 0.54, "hann": 0.5}[window]
    weights = [offset - (1 - offset) * math.cos(2 * math.pi * n / (length - 1)) for n in range(length)]
    for start in range(0, len(samples) - length + 1, shift):
        stretch = slice(start, start + length)
        frame = list(map(mul, weights, emphasised[stretch]))
        yield frame, [norm(w * b, 2 * U * z) for w, b, z in zip(weights, bounds[stretch], frame)]


@functools.cache
def spectra(path, window_length, frame_shift, window, preemphasis):
    """The transform's length, and for each frame the magnitudes of N / 2 + 1 bins and the bound that they share."""
    frames = list(windowed_frames(path, window_length, frame_shift, window, preemphasis))
    length = len(frames[0][0])
    points = 1 << (length - 1).bit_length()
    # cos(2 pi k n / N) for n = 0, 1, ... is every k-th element of one period after the other.
    turns = [2 * math.pi * n / points for n in range(points)] * (length // 2 + 1)
    cosines, sines = list(map(math.cos, turns)), list(map(math.sin, turns))
    magnitudes = [[] for _ in frames]
    for k in range(points // 2 + 1):
        if k == 0:
            cosine, sine = [1.0] * length, [0.0] * length
        else:
            cosine, sine = cosines[: k * length : k], sines[: k * length : k]
        for (frame, _), row in zip(frames, magnitudes):
            row.append(math.hypot(sum(map(mul, frame, cosine)), sum(map(mul, frame, sine))))
    bounds = []
    for frame, inputs in frames:
        bounds.append(norm(*inputs, U * math.sqrt(math.log2(points)) * norm(*frame)))
    return points, magnitudes, bounds


def mel_triangles(s, rate, points):
    """For each filter its first bin, its weights and their bound: triangles straight in mel or in bins."""
    factor, corner = single(s.mel_mul), single(s.mel_div)
    mel = lambda hertz: factor * math.log(1 + hertz / corner)
    low, high = mel(single(s.low_freq)), mel(single(s.high_freq) or rate / 2)
    edges = [low + (high - low) * i / (s.num_filters + 1) for i in range(s.num_filters + 2)]
    positions = [points / rate * corner * (math.exp(edge / factor) - 1) for edge in edges]
    for i in range(1, s.num_filters + 1):
        if s.shape == "mel":
            left, centre, right = edges[i - 1 : i + 2]
            bins = range(math.floor(positions[i - 1]), min(math.floor(positions[i + 1]) + 1, points // 2) + 1)
            places = [mel(k * rate / points) for k in bins]
            weights = [max(0.0, min((m - left) / (centre - left), (right - m) / (right - centre))) for m in places]
            yield bins[0], weights, 4 * U * high / min(centre - left, right - centre)
        else:
            # Above zero at both ends, as in ES 201 108, whose centres are whole bins.
            whole = [math.floor(p + 0.5) for p in positions[i - 1 : i + 2]]
            assert all(abs(p - w) < 0.499 for p, w in zip(positions[i - 1 : i + 2], whole)), "centre between two bins"
            left, centre, right = whole
            bins = range(left, right + 1)
            rise = [(k - left + 1) / (centre - left + 1) for k in bins]
            fall = [1 - (k - centre) / (right - centre + 1) for k in bins]
            yield left, list(map(min, rise, fall)), U


def log_energies(s, bank, magnitudes, bound):
    values, bounds = [], []
    scale = {"e": 1.0, "10": 1 / math.log(10), "db": 10 / math.log(10)}[s.log]
    floor = single(s.energy_floor)
    for first, weights, weight_bound in bank:
        bins = magnitudes[first : first + len(weights)]
        bin_bounds = [norm(bound, 2 * U * x) for x in bins]
        if s.spectrum == "power":
            bin_bounds = [norm(2 * x * b + b * b, 2 * U * x * x) for x, b in zip(bins, bin_bounds)]
            bins = [x * x for x in bins]
        sums = list(accumulate(map(mul, weights, bins)))
        off = norm(*map(mul, weights, bin_bounds), weight_bound * sum(bins), U * norm(*sums))
        energy = sums[-1]
        if energy + ALLOWED * off <= floor:
            energy, off = floor, 0.0
        value = scale * math.log(max(energy, floor))
        values.append(value)
        bounds.append(norm(scale * off / max(energy - off, floor), 3 * U * value))
    return values, bounds


def cepstra(s, values, bounds):
    n = s.num_filters
    scale = math.sqrt(2 / n) if s.dct_scale == "htk" else 1.0
    order = list(range(1, s.num_ceps + 1)) + ([] if s.no_c0 else [0])
    out, out_bounds = [], []
    for i in order:
        lifter = 1 + s.lifter / 2 * math.sin(math.pi * i / s.lifter) if s.lifter else 1.0
        cosines = [math.cos(math.pi * i * (j + 0.5) / n) for j in range(n)]
        products = list(map(mul, values, cosines))
        sums = list(accumulate(products))
        roundings = U * norm(2 * norm(*products), norm(*sums), 3 * sums[-1])
        out.append(scale * lifter * sums[-1])
        out_bounds.append(scale * abs(lifter) * norm(*map(mul, bounds, cosines), roundings))
    return out, out_bounds


def regression(s, rows, bounds):
    """sum of t (x[r+t] - x[r-t]) over 2 sum of t^2, the first and the last row standing in for those outside."""
    span = range(1, s.delta_window + 1)
    gain = 1 / (2 * sum(t * t for t in span))
    at = lambda table, r: table[min(max(r, 0), len(table) - 1)]
    out, out_bounds = [], []
    for r in range(len(rows)):
        ahead, behind = [at(rows, r + t) for t in span], [at(rows, r - t) for t in span]
        off = [(at(bounds, r + t), at(bounds, r - t)) for t in span]
        columns = range(len(rows[0]))
        terms = [[t * (x[c] - y[c]) for t, x, y in zip(span, ahead, behind)] for c in columns]
        offs = [[t * norm(x[c], y[c]) for t, (x, y) in zip(span, off)] for c in columns]
        out.append([gain * sum(term) for term in terms])
        out_bounds.append([gain * norm(*o, 3 * U * norm(*term)) for o, term in zip(offs, terms)])
    return out, out_bounds


def reference(s, path):
    rate, _ = read_samples(path)
    points, magnitudes, spectrum_bounds = spectra(path, s.window_length, s.frame_shift, s.window, s.preemphasis)
    bank = list(mel_triangles(s, rate, points))
    statics = [cepstra(s, *log_energies(s, bank, m, b)) for m, b in zip(magnitudes, spectrum_bounds)]
    parts = [tuple(map(list, zip(*statics)))]
    for _ in range(s.derivatives):
        parts.append(regression(s, *parts[-1]))
    rows = [sum(row, []) for row in zip(*(values for values, _ in parts))]
    bounds = [sum(row, []) for row in zip(*(offs for _, offs in parts))]
    if s.remove_mean:
        count = len(rows)
        means = [sum(column) / count for column in zip(*rows)]
        offs = [
            norm(*off, U * norm(*accumulate(column))) / count
            for column, off in zip(zip(*rows), zip(*bounds))
        ]
        rows = [[x - m for x, m in zip(row, means)] for row in rows]
        bounds = [[norm(b, o, U * x) for b, o, x in zip(off, offs, row)] for off, row in zip(bounds, rows)]
    return rows, bounds


# ------------------------------------------------------------------------------------------------------ comparison


def read_npy(data):
    assert data[:8] == b"\x93NUMPY\x01\x00", "npy: magic or version"
    (size,) = struct.unpack("<H", data[8:10])
    header = data[10 : 10 + size].decode("latin-1")
    assert (10 + size) % 64 == 0 and header.endswith("\n"), "npy: header is not padded to 64 bytes"
    facts = ast.literal_eval(header)
    assert facts["descr"] == "<f4" and facts["fortran_order"] is False, "npy: element or order"
    rows, columns = facts["shape"]
    assert len(data) - 10 - size == 4 * rows * columns, f"npy: {len(data) - 10 - size} bytes for {facts['shape']}"
    values = struct.unpack(f"<{rows * columns}f", data[10 + size :])
    return [list(values[r * columns : (r + 1) * columns]) for r in range(rows)]


def compare(found, expected, bounds, digits=None):
    """The largest error as a share of its bound."""
    shape = lambda table: (len(table), len(table[0]))
    assert shape(found) == shape(expected), f"{shape(found)} instead of {shape(expected)} rows and columns"
    worst = (0.0, "")
    for r, (row, wanted, row_bounds) in enumerate(zip(found, expected, bounds)):
        for c, (x, y, bound) in enumerate(zip(row, wanted, row_bounds)):
            bound *= ALLOWED
            if digits and x != 0:
                bound += 0.5 * 10.0 ** (math.floor(math.log10(abs(x))) - digits + 1)
            error = abs(x - y)
            share = error / bound if bound > 0 else (math.inf if error > 0 else 0.0)
            worst = max(worst, (share, f"row {r}, column {c}: {x:.9g} instead of {y:.9g}, {bound:.2g} allowed"))
            assert not math.isnan(x), f"row {r}, column {c}: not a number"
    assert worst[0] <= 1, worst[1]
    return worst[0]


def check(program, path, options):
    s = Settings(options)
    command = [program, *options.split()]
    text = subprocess.run([*command, path], check=True, capture_output=True, text=True).stdout
    with tempfile.TemporaryDirectory() as folder:
        output = os.path.join(folder, "features.npy")
        subprocess.run([*command, "--format", "npy", "--output", output, path], check=True)
        with open(output, "rb") as file:
            binary = read_npy(file.read())

    rows, bounds = reference(s, path)
    share = compare(binary, rows, bounds)
    words = [line.split(" ") for line in text.splitlines()]
    compare([list(map(float, row)) for row in words], rows, bounds, digits=6)
    assert words == [["%.6g" % x for x in row] for row in binary], "text and npy differ"
    return f"{len(rows)} rows of {len(rows[0])}, largest error {share:.2f} of what is allowed"


def write_sound(path, rate, channels, seconds, silence=0.0):
    """Gliding tones and noise, different in each channel, the last part digital silence."""
    noise = random.Random(rate)
    values = []
    for n in range(round(rate * seconds)):
        t = n / rate
        for channel in range(channels):
            tone = sum(math.sin(2 * math.pi * t * (f + 200 * t) + channel) / f for f in (150, 440, 1270, 3100))
            loud = t < seconds - silence
            values.append(round(9e5 * tone * (1.1 + math.sin(9 * t)) + noise.gauss(0, 60)) if loud else 0)
    with wave.open(path, "wb") as sound:
        sound.setparams((channels, 2, rate, 0, "NONE", ""))
        sound.writeframes(struct.pack(f"<{len(values)}h", *(max(-32768, min(32767, v)) for v in values)))


def main(program):
    recording = "/usr/share/sounds/alsa/Front_Center.wav"
    help_text = subprocess.run([program, "--help"], check=True, capture_output=True, text=True).stdout
    aurora = re.search(r"^  ES 201 108 +(--[^(\n]*[^ (\n])", help_text, re.MULTILINE).group(1)

    with tempfile.TemporaryDirectory() as folder:
        narrow, middle, stereo = (os.path.join(folder, f"{name}.wav") for name in ("narrow", "middle", "stereo"))
        write_sound(narrow, 8000, 1, 0.5)
        write_sound(middle, 11025, 1, 0.4, silence=0.15)
        write_sound(stereo, 16000, 2, 0.3)
        # A long shift is for speed alone: transforms by the definition take their time.
        speech = "--frame-shift 50"
        cases = [
            (narrow, ""),
            (middle, ""),
            (stereo, ""),
            (narrow, "--num-filters 20 --num-ceps 20"),
            (narrow, "--low-freq 133.3 --high-freq 3400"),
            (narrow, "--mel-div 1000"),
            (narrow, "--mel-mul 2595"),
            (narrow, aurora),
            (stereo, aurora),
            (stereo, "--shape bin --spectrum power"),
            (stereo, "--spectrum power"),
            (narrow, "--log 10"),
            (narrow, "--log db --spectrum power"),
            (middle, "--energy-floor 3000"),
            (middle, "--energy-floor 1e-20 --log db"),
            (narrow, "--dct-scale none"),
            (narrow, "--lifter 0"),
            (narrow, "--lifter 0 --no-c0"),
            (narrow, "--lifter 5 --num-ceps 8"),
            (narrow, "--no-c0"),
            (narrow, "--derivatives 0"),
            (narrow, "--derivatives 1"),
            (narrow, "--derivatives 1 --delta-window 1"),
            (narrow, "--delta-window 1"),
            (narrow, "--window hann"),
            (narrow, "--window none --preemphasis 0"),
            (narrow, "--window-length 32 --frame-shift 7.3"),
            (narrow, "--remove-mean"),
            (recording, speech),
            (recording, f"{speech} --remove-mean --low-freq 80 --high-freq 7600"),
            (recording, f"{speech} --spectrum power --log db --lifter 0 --delta-window 1 --num-filters 40"),
        ]
        failed = 0
        for path, options in cases:
            try:
                result = check(program, path, options)
            except (AssertionError, subprocess.CalledProcessError) as wrong:
                failed += 1
                result = f"WRONG: {wrong}"
            print(f"{os.path.basename(path)} {options}: {result}", flush=True)
    print(f"{len(cases) - failed} of {len(cases)} right")
    return 1 if failed else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: check_features.py PROGRAM")
    sys.exit(main(sys.argv[1]))
