#!/usr/bin/env python3
"""Generate the VSOP87D coefficient tables of the Sun and of Mercury to Saturn.

Reads data/ephemeris/vsop87/VSOP87D.{ear,mer,ven,mar,jup,sat} and writes
src/engine/series/vsop87_<body>.h, one header per body, plus the shared
declarations in src/engine/series/vsop87_types.h.

Each body's terms fall into three accuracy groups: group 1 is always summed,
group 2 is added when the accuracy level is below 3, group 3 when it is below 2.
The number of terms per body and group is fixed (BODIES below). Within one
series the terms of a group are always the largest ones left, so every group is
an amplitude cut of its series; the terms are written group by group, and within
a group in the order of the published file.

How the terms are shared among the series of a body (see docs/data.md):

  * The Earth's L0, L1 and R0 are cut at fixed amplitudes (EARTH_FIXED_CUTS).
    The Earth's constant term of L3, 34.955, is kept out of group 1 and stands
    in group 2 (EARTH_BOUNDS).
  * A polynomial term (c = 0, b = 0 or pi) that is the largest term of its
    series stands in group 1, whatever its size.
  * Every other place is filled greedily, group after group, with the term of
    largest contribution a * |tau|^k at |tau| = 4 millennia (TAU_SPAN; the
    years -3000 to +3000 reach |tau| = 5), converted to a displacement in
    astronomical units (L and B terms times the body's mean distance, R terms
    as they are). Equal scores go to the series listed first in SERIES.

Usage:
  tools/gen_vsop87.py            write the headers
  tools/gen_vsop87.py --check    exit 1 if the headers on disk differ from what would be written
  tools/gen_vsop87.py --report   also check the parser against vsop87.chk and print the
                                 truncation errors of the three levels (slow: about 30 s)

Python 3 standard library only. The output depends on nothing but the input files.
"""

import argparse
import math
import os
import sys
from decimal import Decimal

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DATA_DIR = "data/ephemeris/vsop87"
OUT_DIR = "src/engine/series"
TOOL = "tools/gen_vsop87.py"

# name, file suffix, display name, terms in groups 1, 2, 3
BODIES = [
    ("earth", "ear", "the Earth", (22, 42, 123)),
    ("mercury", "mer", "Mercury", (43, 29, 70)),
    ("venus", "ven", "Venus", (17, 11, 53)),
    ("mars", "mar", "Mars", (40, 55, 198)),
    ("jupiter", "jup", "Jupiter", (64, 129, 291)),
    ("saturn", "sat", "Saturn", (103, 143, 371)),
]

# The series that are summed: L0-L5, B0-B4, R0-R4 (the files' B5 and R5 are left out).
SERIES = [("L", k) for k in range(6)] + [("B", k) for k in range(5)] + [("R", k) for k in range(5)]

# The greedy fill weighs a term of tau^k by |tau|^k at this tau (Julian millennia from J2000.0).
# Terms are weighed by their size a thousand years from J2000 (|tau| = 1). Measured against the
# full series (--report), this keeps every planet within 3" geocentric between 1800 and 2200
# and within 45" over -1000..+3000; weights for the far past (|tau| = 4 or 5, the year -3000)
# would more than double the modern errors (docs/data.md has the comparison).
TAU_SPAN = 1.0

# The Earth's fixed cuts: cumulative term counts after groups 1, 2, 3 (constant term included)
# and the smallest amplitude taken in each group.
EARTH_FIXED_CUTS = {
    ("L", 0): ((8, 26, 64), ("2342.687", "202.261", "25.352")),
    ("L", 1): ((4, 12, 34), ("425.264", "55.976", "6.101")),
    ("R", 0): ((4, 14, 40), ("3083.72", "211.829", "26.275")),
}
# Bounds on the Earth's cumulative counts after groups 1, 2, 3: its L3 keeps its constant term
# 34.955, the second largest, out of group 1 and brings it in with group 2.
EARTH_BOUNDS = {("L", 3): {"at_most": (1, None, None), "at_least": (None, 2, None)}}

SCALE = 8  # amplitudes are written times 1e8


# ---------------------------------------------------------------------------------------------
# Reading the files


class Term:
    __slots__ = ("var", "k", "rank", "a_text", "b_text", "c_text", "a", "b", "c", "group")

    def __init__(self, var, k, rank, a_text, b_text, c_text):
        self.var, self.k, self.rank = var, k, rank
        self.a_text, self.b_text, self.c_text = a_text, b_text, c_text
        self.a, self.b, self.c = float(a_text), float(b_text), float(c_text)
        self.group = 0  # 1, 2, 3 when kept; 0 when left out

    def polynomial(self):
        """A term without frequency: a constant times tau^k (b is 0, or pi for a negative one)."""
        return self.c == 0.0


def decimal_text(text, shift=0):
    """The published decimal, times 10**shift, as a C++ double literal without loss."""
    d = Decimal(text).scaleb(shift)
    s = format(d, "f")
    if "." in s:
        s = s.rstrip("0")
        if s.endswith("."):
            s += "0"
    else:
        s += ".0"
    if s in ("-0.0",):
        s = "0.0"
    # The literal must name the same double as the published text.
    assert float(s) == float(Decimal(text).scaleb(shift)), (text, s)
    return s


def read_vsop87d(path):
    """Return {(var, k): [Term, ...]} in file order, for every series of the file."""
    series = {}
    expected = {}
    current = None
    with open(path, "r", encoding="ascii") as f:
        for line in f:
            line = line.rstrip("\r\n")
            if not line.strip():
                continue
            if line.startswith(" VSOP87"):
                if line[17] != "4":
                    raise ValueError("%s: not version D" % path)
                var = "LBR"[int(line[41]) - 1]
                k = int(line[59])
                current = (var, k)
                series[current] = []
                expected[current] = int(line[60:67])
                continue
            rank = int(line[5:10])
            a_text = line[79:97].strip()
            b_text = line[97:111].strip()
            c_text = line[111:131].strip()
            terms = series[current]
            if rank != len(terms) + 1:
                raise ValueError("%s: rank %d out of sequence" % (path, rank))
            terms.append(Term(current[0], current[1], rank, a_text, b_text, c_text))
    for key, n in expected.items():
        if len(series[key]) != n:
            raise ValueError("%s: %s%d has %d terms, header says %d"
                             % (path, key[0], key[1], len(series[key]), n))
    return series


# ---------------------------------------------------------------------------------------------
# Choosing the terms


def by_amplitude(terms):
    """Largest amplitude first; equal amplitudes in file order."""
    return sorted(terms, key=lambda t: (-t.a, t.rank))


def choose_groups(name, series, counts):
    """Set Term.group for every term of the summed series of one body."""
    mean_distance = series[("R", 0)][0].a  # the constant term of R0, in au
    queues = {key: by_amplitude(series.get(key, [])) for key in SERIES}
    taken = {key: 0 for key in SERIES}
    fixed = EARTH_FIXED_CUTS if name == "earth" else {}
    bounds = EARTH_BOUNDS if name == "earth" else {}

    def take(key, group):
        term = queues[key][taken[key]]
        term.group = group
        taken[key] += 1

    def score(key):
        term = queues[key][taken[key]]
        weight = 1.0 if key[0] == "R" else mean_distance
        return weight * term.a * TAU_SPAN ** key[1]

    def open_for(key, group):
        if key in fixed or taken[key] >= len(queues[key]):
            return False
        at_most = bounds.get(key, {}).get("at_most", (None, None, None))[group - 1]
        return at_most is None or taken[key] < at_most

    for group in (1, 2, 3):
        used = 0
        # Fixed cuts.
        for key, (cumulative, smallest) in fixed.items():
            while taken[key] < cumulative[group - 1]:
                take(key, group)
                used += 1
            last = queues[key][taken[key] - 1]
            assert last.a == float(Decimal(smallest[group - 1]).scaleb(-SCALE)), (key, group)
        # Polynomial terms heading their series by amplitude.
        if group == 1:
            for key in SERIES:
                if queues[key] and queues[key][0].polynomial() and open_for(key, 1):
                    take(key, 1)
                    used += 1
        # Terms that must be in by the end of this group.
        for key, b in bounds.items():
            at_least = b.get("at_least", (None, None, None))[group - 1]
            while at_least is not None and taken[key] < at_least:
                take(key, group)
                used += 1
        # Greedy fill.
        while used < counts[group - 1]:
            best = None
            for key in SERIES:
                if not open_for(key, group):
                    continue
                s = score(key)
                if best is None or s > best[0]:
                    best = (s, key)
            take(best[1], group)
            used += 1
        if used != counts[group - 1]:
            raise AssertionError("%s group %d: %d terms, want %d"
                                 % (name, group, used, counts[group - 1]))
    # Each group is an amplitude cut of its series.
    for key in SERIES:
        q = queues[key]
        for i in range(1, len(q)):
            g0, g1 = q[i - 1].group or 4, q[i].group or 4
            assert g0 <= g1, (name, key)
    if name == "earth":
        constant = [t for t in series[("L", 3)] if t.polynomial()][0]
        assert constant.a_text == "0.00000034955" and constant.group == 2


def kept_terms(series, key):
    """The kept terms of one series: group by group, file order within a group."""
    terms = [t for t in series.get(key, []) if t.group]
    return sorted(terms, key=lambda t: (t.group, t.rank))


def group_counts(series, key):
    terms = series.get(key, [])
    return tuple(sum(1 for t in terms if 0 < t.group <= g) for g in (1, 2, 3))


# ---------------------------------------------------------------------------------------------
# Writing the headers


def series_name(name, key):
    return "%s_%s%d" % (name, key[0].lower(), key[1])


def render_types():
    return """\
// Generated by tools/gen_vsop87.py. Do not edit.
//
// Shared declarations of the VSOP87D coefficient tables (vsop87_<body>.h).
#pragma once
#include <array>
#include <span>

namespace celestark::vsop87 {

// One term of a series: a * cos(b + c * tau), tau in Julian millennia (TT) from J2000.0.
// a is the published amplitude times 1e8: units of 1e-8 radian in L and B, 1e-8 au in R.
// b is in radians, c in radians per Julian millennium.
struct VsopTerm {
    double a, b, c;
};

// One series of a body, such as the terms of L2 (those multiplied by tau^2 in the longitude).
// groups[0], groups[1], groups[2] are the numbers of leading terms summed at accuracy level 3,
// level 2 and level 1; groups[2] is terms.size().
struct VsopSeries {
    std::span<const VsopTerm> terms;
    std::array<int, 3> groups;
};

// All series of one body: l[k], b[k], r[k] are multiplied by tau^k.
struct VsopBody {
    std::array<VsopSeries, 6> l;
    std::array<VsopSeries, 5> b;
    std::array<VsopSeries, 5> r;
};

// How many leading terms of a series the accuracy level takes: group 1 always, group 2 below
// level 3, group 3 below level 2.
constexpr int vsop_term_count(const std::array<int, 3>& groups, int accuracy_level) {
    if (accuracy_level < 2) return groups[2];
    if (accuracy_level < 3) return groups[1];
    return groups[0];
}

} // namespace celestark::vsop87
"""


def render_body(name, suffix, display, counts, series):
    lines = []
    out = lines.append
    source = "%s/VSOP87D.%s" % (DATA_DIR, suffix)
    out("// Generated by %s from %s. Do not edit." % (TOOL, source))
    out("//")
    out("// VSOP87D (Bretagnon & Francou 1988) for %s: heliocentric spherical coordinates on the"
        % display)
    out("// mean ecliptic and equinox of date. L = sum of l[k] tau^k, B = sum of b[k] tau^k,")
    out("// R = sum of r[k] tau^k, each series a sum of a * cos(b + c * tau), then divided by 1e8.")
    out("// Terms per accuracy group: %d always, %d more below level 3, %d more below level 2"
        % counts)
    out("// (%d in all). Within a series the terms stand group by group, each group in the order of"
        % sum(counts))
    out("// the published file; <series>_groups holds the cumulative counts after groups 1, 2, 3.")
    out("#pragma once")
    out('#include "engine/series/vsop87_types.h"')
    out("")
    out("namespace celestark::vsop87 {")
    out("")
    out("// One term per line, as generated.")
    out("// clang-format off")
    for key in SERIES:
        ident = series_name(name, key)
        terms = kept_terms(series, key)
        g = group_counts(series, key)
        out("")
        if terms:
            out("inline constexpr std::array<VsopTerm, %d> %s = {{" % (len(terms), ident))
            for t in terms:
                out("    {%s, %s, %s}," % (decimal_text(t.a_text, SCALE), decimal_text(t.b_text),
                                          decimal_text(t.c_text)))
            out("}};")
        else:
            out("inline constexpr std::array<VsopTerm, 0> %s = {};" % ident)
        out("inline constexpr std::array<int, 3> %s_groups = {%d, %d, %d};" % ((ident,) + g))
    out("// clang-format on")
    out("")
    per_group = [0, 0, 0]
    for key in SERIES:
        g = group_counts(series, key)
        for i in range(3):
            per_group[i] += g[i]
    out("// Terms summed at accuracy levels 3, 2 and 1.")
    out("inline constexpr std::array<int, 3> %s_term_counts = {%d, %d, %d};"
        % ((name,) + tuple(per_group)))
    out("")
    out("inline constexpr VsopBody %s_series = {" % name)
    for var, n in (("L", 6), ("B", 5), ("R", 5)):
        out("    {{")
        for k in range(n):
            ident = series_name(name, (var, k))
            out("        {%s, %s_groups}," % (ident, ident))
        out("    }},")
    out("};")
    out("")
    out("} // namespace celestark::vsop87")
    return "\n".join(lines) + "\n"


# ---------------------------------------------------------------------------------------------
# Evaluation (for --report)


def series_sums(terms, tau):
    """Sums of the series at tau in four bins: groups 1, 2, 3 and the terms left out."""
    bins = [0.0, 0.0, 0.0, 0.0]
    cos = math.cos
    for a, b, c, g in terms:
        bins[g] += a * cos(b + c * tau)
    return bins


def prepare(series):
    """{(var, k): [(a, b, c, bin)]} over every series of the file, B5 and R5 included."""
    out = {}
    for key, terms in series.items():
        out[key] = [(t.a, t.b, t.c, (t.group - 1) if t.group else 3) for t in terms]
    return out


def coordinates(prepared, tau):
    """(L, B, R) in radians and au at levels 3, 2, 1 and with every term, as four triples."""
    result = [[0.0, 0.0, 0.0] for _ in range(4)]
    index = {"L": 0, "B": 1, "R": 2}
    for key, terms in prepared.items():
        bins = series_sums(terms, tau)
        p = tau ** key[1]
        v = index[key[0]]
        partial = 0.0
        for level in range(4):
            partial += bins[level]
            result[level][v] += partial * p
    return result


def rect(lbr):
    l, b, r = lbr
    cb = math.cos(b)
    return (r * cb * math.cos(l), r * cb * math.sin(l), r * math.sin(b))


def angle(u, v):
    cx = u[1] * v[2] - u[2] * v[1]
    cy = u[2] * v[0] - u[0] * v[2]
    cz = u[0] * v[1] - u[1] * v[0]
    dot = u[0] * v[0] + u[1] * v[1] + u[2] * v[2]
    return math.atan2(math.sqrt(cx * cx + cy * cy + cz * cz), dot)


ARCSEC = 180.0 * 3600.0 / math.pi


def check_against_chk(all_series):
    """Full series against the published check file, VSOP87D blocks."""
    path = os.path.join(ROOT, DATA_DIR, "vsop87.chk")
    names = {"EARTH": "ear", "MERCURY": "mer", "VENUS": "ven", "MARS": "mar",
             "JUPITER": "jup", "SATURN": "sat"}
    worst = 0.0
    checked = 0
    with open(path, encoding="ascii") as f:
        lines = f.read().splitlines()
    i = 0
    while i < len(lines):
        words = lines[i].split()
        if len(words) >= 3 and words[0] == "VSOP87D" and words[1] in names \
                and words[2].startswith("JD"):
            suffix = names[words[1]]
            jd = float(words[2][2:])
            vals = lines[i + 1].split()
            expect = (float(vals[1]), float(vals[4]), float(vals[7]))
            tau = (jd - 2451545.0) / 365250.0
            prepared = prepare(all_series[suffix])
            full = coordinates(prepared, tau)[3]
            got = (math.fmod(full[0], 2 * math.pi), full[1], full[2])
            if got[0] < 0:
                got = (got[0] + 2 * math.pi, got[1], got[2])
            for g, e in zip(got, expect):
                worst = max(worst, abs(g - e))
            checked += 1
            i += 2
        else:
            i += 1
    return checked, worst


def report(all_series):
    checked, worst = check_against_chk(all_series)
    print("vsop87.chk: %d VSOP87D positions, largest difference %.2e (printed to 1e-10)"
          % (checked, worst))
    spans = [("1800..2200", 1800.0, 2200.0, 1601), ("-1000..+3000", -1000.0, 3000.0, 4001),
             ("-3000..+3000", -3000.0, 3000.0, 6001)]
    prepared = {suffix: prepare(all_series[suffix]) for _, suffix, _, _ in BODIES}
    for label, y0, y1, n in spans:
        # Sample midpoints of n equal steps; tau from the year, J2000.0 = 2000.0.
        taus = [((y0 + (y1 - y0) * (j + 0.5) / n) - 2000.0) / 1000.0 for j in range(n)]
        helio = {name: [0.0, 0.0, 0.0] for name, _, _, _ in BODIES}
        geo = {name: [0.0, 0.0, 0.0] for name, _, _, _ in BODIES}
        for tau in taus:
            earth = None
            for name, suffix, _, _ in BODIES:
                c = coordinates(prepared[suffix], tau)
                full = c[3]
                if name == "earth":
                    earth = c
                for level in range(3):
                    lv = c[level]
                    dl = (lv[0] - full[0]) * math.cos(full[1])
                    db = lv[1] - full[1]
                    dr = (lv[2] - full[2]) / full[2]
                    h = max(abs(dl), abs(db), abs(dr)) * ARCSEC
                    helio[name][level] = max(helio[name][level], h)
                    if name == "earth":
                        # The Sun seen from the Earth: the direction of the Earth, reversed.
                        g = angle(rect(full), rect(lv)) * ARCSEC
                    else:
                        ef = rect(earth[3])
                        el = rect(earth[level])
                        pf, pl = rect(full), rect(lv)
                        vf = (pf[0] - ef[0], pf[1] - ef[1], pf[2] - ef[2])
                        vl = (pl[0] - el[0], pl[1] - el[1], pl[2] - el[2])
                        g = angle(vf, vl) * ARCSEC
                    geo[name][level] = max(geo[name][level], g)
        print()
        print("Years %s, %d samples; largest error against the full VSOP87D, arcseconds" % (label, n))
        print("heliocentric: max(|dL cos B|, |dB|, |dR|/R); geocentric: angle, Earth at the same level")
        print("%-8s %10s %10s %10s   %10s %10s %10s" % ("body", "helio L3", "helio L2", "helio L1",
                                                      "geo L3", "geo L2", "geo L1"))
        for name, _, display, _ in BODIES:
            h, g = helio[name], geo[name]
            label_name = "Sun" if name == "earth" else display
            print("%-8s %10.3f %10.3f %10.3f   %10.3f %10.3f %10.3f"
                  % (label_name, h[0], h[1], h[2], g[0], g[1], g[2]))


# ---------------------------------------------------------------------------------------------


def build():
    all_series = {}
    outputs = {}
    outputs[os.path.join(OUT_DIR, "vsop87_types.h")] = render_types()
    summary = []
    for name, suffix, display, counts in BODIES:
        series = read_vsop87d(os.path.join(ROOT, DATA_DIR, "VSOP87D." + suffix))
        for key in SERIES:
            if key not in series:
                series[key] = []
        choose_groups(name, series, counts)
        all_series[suffix] = series
        outputs[os.path.join(OUT_DIR, "vsop87_%s.h" % name)] = render_body(
            name, suffix, display, counts, series)
        summary.append((display, [(key, group_counts(series, key)) for key in SERIES]))
    return outputs, all_series, summary


def print_summary(summary):
    print("Cumulative term counts after groups 1, 2, 3 (TAU_SPAN %s):" % TAU_SPAN)
    for display, rows in summary:
        cells = ["%s%d %d/%d/%d" % (key[0], key[1], g[0], g[1], g[2]) for key, g in rows if g[2]]
        total = [sum(g[i] for _, g in rows) for i in range(3)]
        print("  %-9s %s  | total %d/%d/%d" % (display, ", ".join(cells), *total))


def main():
    global TAU_SPAN
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--check", action="store_true",
                        help="compare with the headers on disk instead of writing them")
    parser.add_argument("--report", action="store_true",
                        help="verify against vsop87.chk and print the truncation errors "
                             "(writes nothing)")
    parser.add_argument("--quiet", action="store_true")
    parser.add_argument("--tau-span", type=float, default=TAU_SPAN,
                        help="weight of the greedy fill, for experiments (default %(default)s)")
    args = parser.parse_args()
    TAU_SPAN = args.tau_span

    outputs, all_series, summary = build()
    if args.report:
        pass
    elif args.check:
        stale = []
        for rel, text in outputs.items():
            path = os.path.join(ROOT, rel)
            try:
                with open(path, encoding="utf-8", newline="") as f:
                    if f.read() != text:
                        stale.append(rel)
            except FileNotFoundError:
                stale.append(rel)
        for rel in stale:
            print("out of date: %s" % rel)
        if stale:
            return 1
    else:
        os.makedirs(os.path.join(ROOT, OUT_DIR), exist_ok=True)
        for rel, text in outputs.items():
            with open(os.path.join(ROOT, rel), "w", encoding="utf-8", newline="\n") as f:
                f.write(text)
    if not args.quiet:
        print_summary(summary)
    if args.report:
        report(all_series)
    return 0


if __name__ == "__main__":
    sys.exit(main())
