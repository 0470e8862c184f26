#!/usr/bin/env python3
"""Builds the Moon's longitude, latitude and distance series from ELP 2000-82B.

Reads data/ephemeris/elp2000-82b/ELP1 ... ELP36 (IMCCE) and writes the constexpr tables
src/engine/series/elp_types.h, elp_longitude.h, elp_latitude.h and elp_distance.h.

Every term is written as amplitude * sin(argument) (cos for the distance), the argument in
degrees as c0 + c1 T + c2 t2 + c3 t3 + c4 t4 with t2 = T^2 1e-4, t3 = T^3 1e-6, t4 = T^4 1e-8
and T in Julian centuries (TT) from J2000.0.  Each coordinate is a main sum S (the main problem,
files ELP1-3, amplitudes in degrees or kilometres) and three small sums A0, A1, A2 (all the
perturbation files, by their factor 1, T or T^2; units 0.001 degree or kilometres, A2 taken with
t2).  The engine forms

    longitude = W1 + S + 0.001 (A0 + A1 T + A2 t2)                          degrees
    latitude  =      S + 0.001 (A0 + A1 T + A2 t2)                          degrees
    distance  = (385000.57 + S + A0 + A1 T + A2 t2) / 149597870.66          au

referred to the mean ecliptic and mean equinox of date.  See docs/data.md, section "Moon (ELP)".

Python 3 standard library only; the output depends only on the data files.
Usage: tools/gen_elp.py [--repo DIR] [--check]   (--check: compare, do not write)
"""

import argparse
import math
import os
import sys

ELP_DIR = os.path.join("data", "ephemeris", "elp2000-82b")
OUT_DIR = os.path.join("src", "engine", "series")

# Term counts per accuracy group: (always, added below level 3, added below level 2).
GROUP_COUNTS = {
    "longitude": (37, 46, 558),
    "latitude": (14, 39, 275),
    "distance": (25, 28, 302),
}

# Ranking weight of the small sums: a term multiplied by T^k is ranked by its amplitude times
# RANK_CENTURIES^k, i.e. by its size about a thousand years from J2000.
RANK_CENTURIES = 10.0

# ---------------------------------------------------------------------------------------------
# Fundamental arguments, degrees, as [c0, c1, c2, c3, c4] in the powers T, t2, t3, t4 above.

# Delaunay arguments of ELP 2000-85 (Chapront-Touze & Chapront 1988), given there in arc seconds:
# D mean elongation, l' mean anomaly of the Sun, l mean anomaly of the Moon, F argument of latitude.
def _arcsec_poly(d, m, s, a1, a2, a3, a4):
    return [d + m / 60.0 + s / 3600.0, a1 / 3600.0, a2 / 3600.0 * 1e4, a3 / 3600.0 * 1e6,
            a4 / 3600.0 * 1e8]


D_POLY = _arcsec_poly(297, 51, 0.73512, 1602961601.4603, -5.8681, 0.006595, -0.00003184)
LP_POLY = _arcsec_poly(357, 31, 44.79306, 129596581.0474, -0.5529, 0.000147, 0.0)
L_POLY = _arcsec_poly(134, 57, 48.28096, 1717915923.4728, 32.3893, 0.051651, -0.0002447)
F_POLY = _arcsec_poly(93, 16, 19.55755, 1739527263.0983, -12.2505, -0.001021, 0.00000417)
# Mean longitude of the Moon referred to the mean equinox of date (W1; zeta of ELP 2000-82B).
W1_POLY = [218.31665436, 481267.8813424, -13.268, 1.856, -1.534]


def _dms(d, m, s):
    return d + m / 60.0 + s / 3600.0


def _linear(c0_deg, rate_arcsec):
    return [c0_deg, rate_arcsec / 3600.0, 0.0, 0.0, 0.0]


# Heliocentric mean longitudes of the planets (ELP 2000-82B, referred to J2000), linear.
ME_POLY = _linear(_dms(252, 15, 3.25986), 538101628.68898)
VE_POLY = _linear(_dms(181, 58, 47.28305), 210664136.43355)
EMB_POLY = _linear(_dms(100, 27, 59.22059), 129597742.2758)
MA_POLY = _linear(_dms(355, 25, 59.78866), 68905077.59284)
JU_POLY = _linear(_dms(34, 21, 5.34212), 10925660.42861)
SA_POLY = _linear(_dms(50, 4, 38.89694), 4399609.65932)
UR_POLY = _linear(_dms(314, 3, 18.01841), 1542481.19393)
NE_POLY = _linear(_dms(304, 20, 55.19575), 786550.32074)

# Order of the multiplier vector that keys every term.
ARG_NAMES = ["D", "l'", "l", "F", "zeta", "Me", "V", "EMB", "Ma", "J", "S", "U", "N"]
ARG_POLYS = [D_POLY, LP_POLY, L_POLY, F_POLY, W1_POLY, ME_POLY, VE_POLY, EMB_POLY, MA_POLY,
             JU_POLY, SA_POLY, UR_POLY, NE_POLY]

# Constants of the fit of ELP 2000-82B to DE200/LE200 (notice "Lunar solution ELP 2000-82B").
ARCSEC = math.pi / 648000.0
W1_RATE_ARCSEC = 1732559343.73604
AM = 0.074801329518
ALPHA = 0.002571881335
DTASM = 2.0 * ALPHA / (3.0 * AM)
DELNU = 0.55604 / W1_RATE_ARCSEC
DELE = 0.01789 * ARCSEC
DELG = -0.08066 * ARCSEC
DELNP = -0.06424 / W1_RATE_ARCSEC
DELEP = -0.12879 * ARCSEC
A0_KM = 384747.9806448954
ATH_KM = 384747.9806743165

MEAN_DISTANCE_KM = 385000.57
KM_PER_AU = 149597870.66

# Perturbation files: file number -> (coordinate, power of T, layout).
COORDS = ["longitude", "latitude", "distance"]


def _perturbation_files():
    files = {}
    for base, power, layout in [(4, 0, "f"), (7, 1, "f"), (10, 0, "p1"), (13, 1, "p1"),
                                (16, 0, "p2"), (19, 1, "p2"), (22, 0, "f"), (25, 1, "f"),
                                (28, 0, "f"), (31, 0, "f"), (34, 2, "f")]:
        for k in range(3):
            files[base + k] = (COORDS[k], power, layout)
    return files


PERTURBATION_FILES = _perturbation_files()


def poly_of(mult):
    """Argument polynomial of an integer multiplier vector over ARG_POLYS."""
    c = [0.0] * 5
    for m, p in zip(mult, ARG_POLYS):
        if m:
            for i in range(5):
                c[i] += m * p[i]
    return c


# ---------------------------------------------------------------------------------------------
# Reading the files.

def read_lines(repo, n):
    path = os.path.join(repo, ELP_DIR, "ELP%d" % n)
    with open(path, "r", encoding="ascii") as fh:
        lines = fh.read().replace("\r", "").split("\n")
    return [ln for ln in lines[1:] if ln.strip()]


def read_main(repo, n):
    """Main problem file: list of (multiplier vector, corrected amplitude)."""
    out = []
    for ln in read_lines(repo, n):
        d, lp, l, f = (int(ln[3 * i:3 * i + 3]) for i in range(4))
        a = float(ln[14:27])
        b = [float(ln[27 + 12 * k:39 + 12 * k]) for k in range(6)]
        amp = (a + (b[0] + DTASM * b[4]) * (DELNP - AM * DELNU) + b[1] * DELG + b[2] * DELE
               + b[3] * DELEP)
        if n == 3:
            amp -= 2.0 * a * DELNU / 3.0
        mult = [d, lp, l, f] + [0] * 9
        out.append((tuple(mult), amp))
    return out


def read_perturbation(repo, n):
    """Perturbation file: list of (multiplier vector, phase degrees, amplitude)."""
    layout = PERTURBATION_FILES[n][2]
    out = []
    for ln in read_lines(repo, n):
        if layout == "f":
            ints = [int(ln[3 * i:3 * i + 3]) for i in range(5)]
            phase = float(ln[16:25])
            amp = float(ln[26:35])
            zeta, d, lp, l, f = ints
            mult = [d, lp, l, f, zeta] + [0] * 8
        else:
            ints = [int(ln[3 * i:3 * i + 3]) for i in range(11)]
            phase = float(ln[34:43])
            amp = float(ln[44:53])
            mult = [0] * 13
            if layout == "p1":  # Me V EMB Ma J S U N, then D l F
                mult[5:13] = ints[0:8]
                mult[0], mult[2], mult[3] = ints[8], ints[9], ints[10]
            else:  # Me V EMB Ma J S U, then D l' l F
                mult[5:12] = ints[0:7]
                mult[0], mult[1], mult[2], mult[3] = ints[7], ints[8], ints[9], ints[10]
        out.append((tuple(mult), phase, amp))
    return out


# ---------------------------------------------------------------------------------------------
# Building the sums.

class Term:
    """amp * sin(c0 + c1 T + ...) or amp * cos(...) for the distance; amp in output units."""

    def __init__(self, amp, poly, mult, weight):
        self.amp = amp
        self.poly = poly
        self.mult = mult
        self.weight = weight

    def value(self, t, cosine):
        tt = [1.0, t, t * t * 1e-4, t ** 3 * 1e-6, t ** 4 * 1e-8]
        arg = math.radians(sum(c * x for c, x in zip(self.poly, tt)))
        return self.amp * (math.cos(arg) if cosine else math.sin(arg))


def _norm360(x):
    x = math.fmod(x, 360.0)
    if x < 0.0:
        x += 360.0
    if x >= 360.0 - 5e-11:
        x = 0.0
    return x


def build_main(repo, coord):
    n = COORDS.index(coord) + 1
    terms = []
    constant = None
    for mult, amp in read_main(repo, n):
        if coord == "distance":
            amp *= A0_KM / ATH_KM
        else:
            amp /= 3600.0
        if not any(mult):
            constant = amp  # the mean distance of the main problem
            continue
        poly = poly_of(mult)
        poly[0] = _norm360(poly[0])
        terms.append(Term(amp, poly, mult, abs(amp)))
    return terms, constant


def _flip(mult, phase):
    """sin(-a + p) = sin(a + 180 - p)."""
    return tuple(-x for x in mult), 180.0 - phase


def _canonical(mult):
    for m in mult:
        if m:
            return mult if m > 0 else tuple(-x for x in mult)
    return mult


def build_small(repo, coord, power, rank_centuries=RANK_CENTURIES):
    """Merged perturbation terms of one coordinate carrying T^power.

    Terms of the same argument (or its negative) are added as phasors; the sum keeps the
    orientation in which the argument first appears in the files.
    """
    phasors = {}
    order = []
    for n in sorted(PERTURBATION_FILES):
        c, p, _ = PERTURBATION_FILES[n]
        if c != coord or p != power:
            continue
        for mult, phase, amp in read_perturbation(repo, n):
            canon = _canonical(mult)
            if canon not in phasors:
                phasors[canon] = [mult, 0.0, 0.0]
                order.append(canon)
            if mult != phasors[canon][0]:
                mult, phase = _flip(mult, phase)
            r = math.radians(phase)
            phasors[canon][1] += amp * math.cos(r)  # coefficient of sin(a)
            phasors[canon][2] += amp * math.sin(r)  # coefficient of cos(a)
    terms = []
    for canon in order:
        key, s, c = phasors[canon]
        amp = math.hypot(s, c)
        if amp == 0.0:
            continue
        phase = math.degrees(math.atan2(c, s))
        if coord == "distance":
            phase -= 90.0  # amp sin(x) = amp cos(x - 90)
        # Keep the phase within (-90, 90] by the sign of the amplitude, so that a term whose
        # phase is 0 or 180 shows the bare combination of the arguments in c0.
        phase = math.fmod(phase, 360.0)
        if phase <= -180.0:
            phase += 360.0
        elif phase > 180.0:
            phase -= 360.0
        if phase > 90.0 + 1e-9:
            phase -= 180.0
            amp = -amp
        elif phase <= -90.0 + 1e-9:
            phase += 180.0
            amp = -amp
        if abs(phase) < 1e-9:
            phase = 0.0
        poly = poly_of(key)
        poly[0] = _norm360(poly[0] + phase)
        if not any(key):
            if coord == "distance" and power == 0:
                continue  # part of the constant 385000.57 km
            poly = [poly[0], 0.0, 0.0, 0.0, 0.0]
        if coord == "distance":
            out_amp = amp * (1e4 if power == 2 else 1.0)  # km; A2 goes with t2 = T^2 1e-4
        else:
            out_amp = amp / 3.6 * (1e4 if power == 2 else 1.0)  # 0.001 degree
        # weight: size in degrees (km) about RANK_CENTURIES centuries from J2000
        size = amp if coord == "distance" else amp / 3600.0
        terms.append(Term(out_amp, poly, key, abs(size) * rank_centuries ** power))
    return terms


def _rank_key(term):
    return (-term.weight, term.mult)


def select(repo, coord, rank_centuries=RANK_CENTURIES):
    """The four arrays of a coordinate, each ordered by amplitude, with their group ends.

    One ranking by weight decides: the always group takes the heaviest S terms, the group below
    level 3 the next heaviest of S, A0 and A1 (with at least the first term of A0 and of A1),
    the group below level 2 the next heaviest of all four sums.
    """
    main, constant = build_main(repo, coord)
    small = [build_small(repo, coord, p, rank_centuries) for p in range(3)]
    pools = {"S": sorted(main, key=_rank_key),
             "A0": sorted(small[0], key=_rank_key),
             "A1": sorted(small[1], key=_rank_key),
             "A2": sorted(small[2], key=_rank_key)}
    taken = {k: 0 for k in pools}
    ends = {k: [0, 0, 0] for k in pools}
    n_always, n_below3, n_below2 = GROUP_COUNTS[coord]
    for group, count, allowed in [(0, n_always, ["S"]), (1, n_below3, ["S", "A0", "A1"]),
                                  (2, n_below2, ["S", "A0", "A1", "A2"])]:
        if group == 1:
            # the first term of A0 and of A1 always enters below level 3
            for k in ["A0", "A1"]:
                if taken[k] == 0 and pools[k] and count > 0:
                    taken[k] = 1
                    count -= 1
        for _ in range(count):
            best = None
            for k in allowed:
                if taken[k] < len(pools[k]):
                    cand = pools[k][taken[k]]
                    if best is None or _rank_key(cand) < _rank_key(pools[best][taken[best]]):
                        best = k
            taken[best] += 1
        for k in pools:
            ends[k][group] = taken[k]
    arrays = {k: pools[k][:taken[k]] for k in pools}
    rest = {k: pools[k][taken[k]:] for k in pools}
    return arrays, ends, constant, rest


# ---------------------------------------------------------------------------------------------
# Output.

def _num(x, decimals):
    s = "%.*f" % (decimals, x)
    if "." in s:
        s = s.rstrip("0")
        if s.endswith("."):
            s += "0"
    if s in ("-0.0", "-0"):
        s = "0.0"
    return s


def _amp(x):
    s = "%.10g" % x
    if "e" not in s and "." not in s:
        s += ".0"
    return s


def format_term(t):
    p = t.poly
    return "{%s, %s, %s, %s, %s, %s}" % (_amp(t.amp), _num(p[0], 10), _num(p[1], 8),
                                        _num(p[2], 6), _num(p[3], 6), _num(p[4], 6))


def describe(mult):
    parts = []
    for m, name in zip(mult, ARG_NAMES):
        if m:
            sign = "-" if m < 0 else "+"
            mag = "" if abs(m) == 1 else str(abs(m))
            parts.append("%s %s%s" % (sign, mag, name))
    if not parts:
        return "constant"
    s = " ".join(parts)
    return s[2:] if s.startswith("+ ") else "-" + s[2:]


HEADER_SOURCES = "data/ephemeris/elp2000-82b/ELP1 to ELP36"

SUM_DOC = {
    "S": "main sum S (main problem)",
    "A0": "small sum A0 (perturbations, factor 1)",
    "A1": "small sum A1 (perturbations, factor T)",
    "A2": "small sum A2 (perturbations, factor t2 = T^2 1e-4)",
}


def render_coordinate(coord, arrays, ends):
    unit_s = "kilometres" if coord == "distance" else "degrees"
    unit_a = "kilometres" if coord == "distance" else "0.001 degree"
    func = "cos" if coord == "distance" else "sin"
    out = []
    out.append("// Generated by tools/gen_elp.py from %s. Do not edit." % HEADER_SOURCES)
    out.append("#pragma once")
    out.append("// The Moon's %s: terms amp * %s(c0 + c1 T + c2 t2 + c3 t3 + c4 t4), argument in"
               % (coord, func))
    out.append("// degrees. S amplitudes in %s, A0, A1, A2 amplitudes in %s. Each array is"
               % (unit_s, unit_a))
    out.append("// ordered by amplitude; its group ends say how many leading terms each accuracy")
    out.append("// level takes (see ElpGroupEnds).")
    out.append("")
    out.append("#include <array>")
    out.append("")
    out.append('#include "engine/series/elp_types.h"')
    out.append("")
    out.append("namespace celestark::elp {")
    totals = [0, 0, 0]
    for k in ["S", "A0", "A1", "A2"]:
        name = "%s_%s" % (coord, k.lower())
        terms = arrays[k]
        e = ends[k]
        totals[0] += e[0]
        totals[1] += e[1] - e[0]
        totals[2] += e[2] - e[1]
        out.append("")
        out.append("// %s, %d terms." % (SUM_DOC[k], len(terms)))
        out.append("inline constexpr ElpGroupEnds %s_ends{%d, %d, %d};" % (name, e[0], e[1], e[2]))
        out.append("inline constexpr std::array<ElpTerm, %d> %s{{" % (len(terms), name))
        for t in terms:
            out.append("    %s, // %s" % (format_term(t), describe(t.mult)))
        out.append("}};")
        out.append("static_assert(%s.size() == %s_ends.level_below_2);" % (name, name))
    n = GROUP_COUNTS[coord]
    assert tuple(totals) == n, (coord, totals, n)
    out.append("")
    out.append("// Terms per accuracy group over the four sums: %d always, %d more below level 3,"
               % (n[0], n[1]))
    out.append("// %d more below level 2 (%d in all)." % (n[2], sum(n)))
    out.append("")
    out.append("} // namespace celestark::elp")
    out.append("")
    return "\n".join(out)


def render_types():
    w = W1_POLY
    out = []
    out.append("// Generated by tools/gen_elp.py from %s. Do not edit." % HEADER_SOURCES)
    out.append("#pragma once")
    out.append("// Shape of the lunar series tables elp_longitude.h, elp_latitude.h, elp_distance.h.")
    out.append("")
    out.append("namespace celestark::elp {")
    out.append("")
    out.append("// One term: amp * sin (cos for the distance) of c0 + c1 T + c2 t2 + c3 t3 + c4 t4")
    out.append("// degrees, T in Julian centuries (TT) from J2000.0, t2 = T^2 1e-4, t3 = T^3 1e-6,")
    out.append("// t4 = T^4 1e-8.")
    out.append("struct ElpTerm {")
    out.append("    double amp, c0, c1, c2, c3, c4;")
    out.append("};")
    out.append("")
    out.append("// Where the accuracy groups of one array end: terms [0, always) are taken at every")
    out.append("// level, [always, level_below_3) also when the level is below 3, [level_below_3,")
    out.append("// level_below_2) also when it is below 2. level_below_2 is the array's size.")
    out.append("struct ElpGroupEnds {")
    out.append("    int always, level_below_3, level_below_2;")
    out.append("};")
    out.append("")
    out.append("// Mean longitude of the Moon W1, mean equinox of date, degrees, in T, t2, t3, t4.")
    out.append("inline constexpr double w1[5] = {%s, %s, %s, %s, %s};"
               % tuple(repr(x) for x in w))
    out.append("// Constant of the distance, kilometres, and kilometres per astronomical unit.")
    out.append("inline constexpr double mean_distance_km = %r;" % MEAN_DISTANCE_KM)
    out.append("inline constexpr double km_per_au = %r;" % KM_PER_AU)
    out.append("")
    out.append("} // namespace celestark::elp")
    out.append("")
    return "\n".join(out)


def generate(repo):
    files = {"elp_types.h": render_types()}
    info = {}
    for coord in COORDS:
        arrays, ends, constant, rest = select(repo, coord)
        files["elp_%s.h" % coord] = render_coordinate(coord, arrays, ends)
        info[coord] = (arrays, ends, constant)
    return files, info


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--repo", default=os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    ap.add_argument("--check", action="store_true", help="report stale files, write nothing")
    args = ap.parse_args()
    files, info = generate(args.repo)
    out_dir = os.path.join(args.repo, OUT_DIR)
    stale = []
    for name, text in sorted(files.items()):
        path = os.path.join(out_dir, name)
        old = None
        if os.path.exists(path):
            with open(path, "r", encoding="ascii") as fh:
                old = fh.read()
        if old != text:
            stale.append(name)
            if not args.check:
                os.makedirs(out_dir, exist_ok=True)
                with open(path, "w", encoding="ascii", newline="\n") as fh:
                    fh.write(text)
    for coord in COORDS:
        arrays, ends, constant = info[coord]
        sizes = ", ".join("%s %d" % (k, len(v)) for k, v in arrays.items())
        print("%-9s %s; main-problem constant %s" % (coord, sizes,
                                                    "%.5f km" % constant if constant else "none"))
    if args.check:
        print("stale: %s" % (", ".join(stale) if stale else "none"))
        return 1 if stale else 0
    print("written: %s" % (", ".join(stale) if stale else "nothing changed"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
