#!/usr/bin/env python3
"""Evaluates the generated lunar series and compares them with a reference ephemeris.

Reads the tables src/engine/series/elp_*.h as written (not the generator's memory), computes the
Moon's geocentric longitude, latitude and distance (mean ecliptic and equinox of date) at accuracy
levels 1, 2 and 3, and compares them with

  * a reference CSV in the layout jd_tt,body,mode,lon_deg,lat_deg,dist_au_or_z (rows "moon,geo_true"
    with ecliptic and true equinox of date, and "ecl_nut" rows whose fifth field is the nutation in
    longitude in degrees, added to the mean longitude before comparing), when one is given;
  * the complete ELP 2000-82B series (every term of ELP1-36, same arguments and constants), which
    measures the cut alone.

Also checks the first terms of the longitude against the published low-precision subset of the
ELP 2000-85 tables in data/ephemeris/elp2000-85-book/.

Usage: tools/check_elp.py [--reference bodies.csv] [--grid N]
"""

import argparse
import csv
import math
import os
import re
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import gen_elp  # noqa: E402

REPO = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SUMS = ["s", "a0", "a1", "a2"]

TERM_RE = re.compile(r"^\s*\{([^}]*)\},")
ENDS_RE = re.compile(r"ElpGroupEnds (\w+)_ends\{(\d+), (\d+), (\d+)\};")
ARRAY_RE = re.compile(r"std::array<ElpTerm, (\d+)> (\w+)\{\{")


def read_header(path):
    arrays, ends, current = {}, {}, None
    with open(path, "r", encoding="ascii") as fh:
        for line in fh:
            m = ENDS_RE.search(line)
            if m:
                ends[m.group(1)] = tuple(int(m.group(i)) for i in (2, 3, 4))
                continue
            m = ARRAY_RE.search(line)
            if m:
                current = m.group(2)
                arrays[current] = []
                continue
            if current and line.startswith("}};"):
                current = None
                continue
            m = TERM_RE.match(line)
            if current and m:
                arrays[current].append([float(x) for x in m.group(1).split(",")])
    for name, terms in arrays.items():
        assert len(terms) == ends[name][2], name
    return arrays, ends


def load_tables():
    tables = {}
    for coord in gen_elp.COORDS:
        path = os.path.join(REPO, gen_elp.OUT_DIR, "elp_%s.h" % coord)
        tables[coord] = read_header(path)
    return tables


def count_for_level(ends, level):
    if level >= 3:
        return ends[0]
    if level == 2:
        return ends[1]
    return ends[2]


def sum_terms(terms, n, tt, cosine):
    total = 0.0
    for amp, c0, c1, c2, c3, c4 in terms[:n]:
        arg = math.radians(c0 + c1 * tt[1] + c2 * tt[2] + c3 * tt[3] + c4 * tt[4])
        total += amp * (math.cos(arg) if cosine else math.sin(arg))
    return total


def moon(tables, t, level):
    """Longitude (deg, mean equinox of date, unfolded), latitude (deg), distance (au)."""
    tt = [1.0, t, t * t * 1e-4, t ** 3 * 1e-6, t ** 4 * 1e-8]
    out = {}
    for coord in gen_elp.COORDS:
        arrays, ends = tables[coord]
        cos = coord == "distance"
        s = {k: sum_terms(arrays["%s_%s" % (coord, k)], count_for_level(ends["%s_%s" % (coord, k)],
                                                                         level), tt, cos)
             for k in SUMS}
        small = s["a0"] + s["a1"] * t + s["a2"] * tt[2]
        if coord == "distance":
            out[coord] = (gen_elp.MEAN_DISTANCE_KM + s["s"] + small) / gen_elp.KM_PER_AU
        else:
            out[coord] = s["s"] + 0.001 * small
    w1 = sum(c * x for c, x in zip(gen_elp.W1_POLY, tt))
    return out["longitude"] + w1, out["latitude"], out["distance"]


class FullSeries:
    """Every term of ELP1-36 with the generator's arguments, for measuring the cut."""

    def __init__(self):
        self.terms = {}
        for coord in gen_elp.COORDS:
            main, constant = gen_elp.build_main(REPO, coord)
            small = [gen_elp.build_small(REPO, coord, p) for p in range(3)]
            self.terms[coord] = (main, constant, small)
        # the perturbation constant of the distance that the generator folds into 385000.57
        self.dist_pert_constant = 0.0
        for n, (c, p, _) in gen_elp.PERTURBATION_FILES.items():
            if c == "distance" and p == 0:
                for mult, phase, amp in gen_elp.read_perturbation(REPO, n):
                    if not any(mult):
                        self.dist_pert_constant += amp * math.sin(math.radians(phase))

    def moon(self, t):
        tt = [1.0, t, t * t * 1e-4, t ** 3 * 1e-6, t ** 4 * 1e-8]
        out = {}
        for coord in gen_elp.COORDS:
            main, constant, small = self.terms[coord]
            cos = coord == "distance"
            s = sum(x.value(t, cos) for x in main)
            a = [sum(x.value(t, cos) for x in small[p]) for p in range(3)]
            sm = a[0] + a[1] * t + a[2] * tt[2]
            if cos:
                out[coord] = (constant + self.dist_pert_constant + s + sm) / gen_elp.KM_PER_AU
            else:
                out[coord] = s + 0.001 * sm
        w1 = sum(c * x for c, x in zip(gen_elp.W1_POLY, tt))
        return out["longitude"] + w1, out["latitude"], out["distance"]


def dlon(a, b):
    return (a - b + 180.0) % 360.0 - 180.0


def read_reference(path):
    rows, nut = {}, {}
    with open(path, newline="") as fh:
        for rec in csv.reader(fh):
            if len(rec) < 6 or rec[0] == "jd_tt":
                continue
            jd = float(rec[0])
            if rec[1] == "moon" and rec[2] == "geo_true":
                rows[jd] = (float(rec[3]), float(rec[4]), float(rec[5]))
            elif rec[1] == "ecl_nut":
                nut[jd] = float(rec[5])  # true obl, mean obl, nutation in longitude, ...
    return [(jd, rows[jd], nut[jd]) for jd in sorted(rows) if jd in nut]


SPANS = [("1800..2200", -2.0, 2.0), ("-1000..3000", -30.0, 10.0)]
AU_KM = gen_elp.KM_PER_AU


def report(title, samples):
    """samples: list of (t, {level: (dlon", dlat", ddist km)})."""
    print(title)
    print("  %-12s %5s %4s %11s %11s %11s %14s" % ("span", "level", "n", "lon max\"",
                                                    "lat max\"", "dist max km", "lon/(60+T^2)"))
    for name, lo, hi in SPANS:
        sel = [(t, e) for t, e in samples if lo <= t <= hi + 1e-9]
        if not sel:
            continue
        for level in (1, 2, 3):
            lon = max(abs(e[level][0]) for t, e in sel)
            lat = max(abs(e[level][1]) for t, e in sel)
            dist = max(abs(e[level][2]) for t, e in sel)
            ratio = max(abs(e[level][0]) / (60.0 + t * t) for t, e in sel)
            print("  %-12s %5d %4d %11.3f %11.3f %11.4f %14.3f" % (name, level, len(sel), lon, lat,
                                                                  dist, ratio))


def check_first_terms(tables):
    path = os.path.join(REPO, "data", "ephemeris", "elp2000-85-book",
                        "elp2000_85_book_longitude_lowprec_subset.csv")
    if not os.path.exists(path):
        return
    s = tables["longitude"][0]["longitude_s"]
    worst = [0.0] * 6
    print("Longitude S against the published ELP 2000-85 subset (largest differences):")
    with open(path, newline="") as fh:
        for rec in csv.DictReader(fh):
            if rec["block"] != "main":
                continue
            i = int(rec["index"]) - 1
            book = [float(rec[k]) for k in ("amplitude", "c0_deg", "c1_deg_per_century",
                                            "c2_1e-4deg", "c3_1e-6deg", "c4_1e-8deg")]
            for k in range(6):
                d = s[i][k] - book[k]
                if k == 1:
                    d = dlon(s[i][k], book[k])
                if abs(d) > abs(worst[k]):
                    worst[k] = d
                if k == 0 and abs(d) > 6e-9 or k == 1 and abs(d) > 6e-8 or \
                        k == 2 and abs(d) > 6e-8 or k >= 3 and abs(d) > 6e-4:
                    print("  term %2d %s: ours %.14g, published %.14g" % (
                        i + 1, ["amp", "c0", "c1", "c2", "c3", "c4"][k], s[i][k], book[k]))
    print("  max |difference| amp %.1e deg, c0 %.1e, c1 %.1e, c2 %.1e, c3 %.1e, c4 %.1e" % tuple(
        abs(x) for x in worst))
    print("Small sums against the same subset (amplitude in 0.001 degree, c0, c1):")
    arrays = tables["longitude"][0]
    with open(path, newline="") as fh:
        for rec in csv.DictReader(fh):
            if rec["block"] == "main":
                continue
            amp, c0, c1 = (float(rec[k]) for k in ("amplitude", "c0_deg", "c1_deg_per_century"))
            best = None
            for t in arrays["longitude_" + rec["block"].lower()]:
                a, d0, d1 = t[0], t[1], t[2]
                if d1 * c1 < 0:
                    a, d0, d1 = -a, (-d0) % 360.0, -d1
                if abs(d1 - c1) < 0.06 and (best is None or abs(d1 - c1) < abs(best[2] - c1)):
                    best = (a, d0, d1)
            if best is None:
                print("  %s %s %g sin(%g + %g T): no term of that rate" % (
                    rec["block"], rec["index"], amp, c0, c1))
            else:
                print("  %s %s published %9.5f %9.4f %13.3f  ours %11.7f %11.6f %15.6f" % (
                    rec["block"], rec["index"], amp, c0, c1, best[0], best[1], best[2]))


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--reference", help="CSV with moon geo_true and ecl_nut rows")
    ap.add_argument("--grid", type=int, default=0,
                    help="also compare with the full series at N dates spread over -1000..3000")
    args = ap.parse_args()
    tables = load_tables()
    check_first_terms(tables)
    full = FullSeries()

    if args.reference:
        ref = read_reference(args.reference)
        vs_ref, vs_full, full_vs_ref = [], [], []
        for jd, (lon, lat, dist), nut in ref:
            t = (jd - 2451545.0) / 36525.0
            f = full.moon(t)
            e_ref, e_full = {}, {}
            for level in (1, 2, 3):
                m = moon(tables, t, level)
                e_ref[level] = (dlon(m[0] + nut, lon) * 3600, (m[1] - lat) * 3600,
                                (m[2] - dist) * AU_KM)
                e_full[level] = (dlon(m[0], f[0]) * 3600, (m[1] - f[1]) * 3600,
                                 (m[2] - f[2]) * AU_KM)
            ef = (dlon(f[0] + nut, lon) * 3600, (f[1] - lat) * 3600, (f[2] - dist) * AU_KM)
            vs_ref.append((t, e_ref))
            vs_full.append((t, e_full))
            full_vs_ref.append((t, {1: ef, 2: ef, 3: ef}))
        print("%d reference moments" % len(ref))
        report("Generated tables minus reference:", vs_ref)
        report("Generated tables minus full ELP 2000-82B (the cut alone):", vs_full)
        print("Full ELP 2000-82B minus reference (level column not used):")
        for name, lo, hi in SPANS:
            sel = [(t, e) for t, e in full_vs_ref if lo <= t <= hi + 1e-9]
            print("  %-12s lon %.3f\"  lat %.3f\"  dist %.4f km" % (
                name, max(abs(e[1][0]) for t, e in sel), max(abs(e[1][1]) for t, e in sel),
                max(abs(e[1][2]) for t, e in sel)))
    if args.grid:
        samples = []
        for i in range(args.grid):
            t = -30.0 + 40.0 * (i + 0.5) / args.grid
            f = full.moon(t)
            e = {}
            for level in (1, 2, 3):
                m = moon(tables, t, level)
                e[level] = (dlon(m[0], f[0]) * 3600, (m[1] - f[1]) * 3600, (m[2] - f[2]) * AU_KM)
            samples.append((t, e))
        for i in range(args.grid):  # the modern span in more detail
            t = -2.0 + 4.0 * (i + 0.5) / args.grid
            f = full.moon(t)
            e = {}
            for level in (1, 2, 3):
                m = moon(tables, t, level)
                e[level] = (dlon(m[0], f[0]) * 3600, (m[1] - f[1]) * 3600, (m[2] - f[2]) * AU_KM)
            samples.append((t, e))
        report("Generated tables minus full ELP 2000-82B on a grid of %d + %d dates:"
               % (args.grid, args.grid), samples)
    return 0


if __name__ == "__main__":
    sys.exit(main())
