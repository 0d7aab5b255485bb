#!/usr/bin/python3
"""Gamma curve generator (Parts 2.1, 2.2, 3.4): writes the four 257-node gamma curves as C source.

The spec lists some nodes of each curve (nodes 0 to 8 and every sixteenth node) and states properties of
the whole curve; the other nodes are ours to choose. This script chooses them in two steps:

1. An ideal real-valued curve through the listed nodes:
   - g_gamma_table_day and g_gamma_table_night: the monotone piecewise-cubic Hermite interpolant (PCHIP,
     Fritsch-Carlson / Fritsch-Butland slopes) through their listed nodes;
   - the two high-gain curves: the profile curve they derive from plus an offset curve, itself the PCHIP
     interpolant through the offsets the listed nodes give (hg - profile) and a few offsets chosen here
     (zero over the range where the spec makes the curves equal; where the day offset crosses zero and
     where it reaches its minimum of -27). A PCHIP interpolant has its extremes at its data points, so the
     offset stays within the spec's bounds between them.
2. The integer curve nearest to the ideal (least squares over all nodes) that meets every property the spec
   states: listed nodes exact, strictly increasing, the step ranges, the comparisons with the profile curves.
   Found exactly by dynamic programming over a band of values around the ideal.

Then every property is checked once more and the C sources are written. Standard library only, plain
IEEE double arithmetic (+ - * /) and a fixed tie-break, so the output is byte-identical on every run.

Usage:
  gen_gamma.py                 write the C sources into the source tree
  gen_gamma.py --check         exit 1 (with a diff) if the checked-in sources differ from what is generated
  gen_gamma.py --data FILE     also write the four curves as columns for tools/gamma/gamma_curves.gp
  gen_gamma.py --root DIR      use DIR as the source tree (default: two levels above this script)
"""

import argparse
import difflib
import os
import sys

NODES = 257
TOP = 4095
SIXTEENTHS = list(range(0, NODES, 16))


def listed(first_nine, sixteenths):
    """The nodes a Part lists: nodes 0 to 8, then every sixteenth node."""
    nodes = dict(enumerate(first_nine))
    for n, v in zip(SIXTEENTHS, sixteenths):
        nodes[n] = v
    return nodes


# The listed nodes, copied from the Parts.
DAY = listed([0, 76, 156, 244, 331, 405, 477, 551, 625],  # Part 2.1
             [0, 1167, 1755, 2188, 2498, 2729, 2922, 3110, 3245, 3377, 3507, 3619, 3722, 3824, 3927,
              4011, 4095])
NIGHT = listed([0, 69, 138, 207, 272, 332, 390, 446, 500],  # Part 2.2
               [0, 875, 1484, 1947, 2313, 2573, 2789, 2977, 3128, 3274, 3419, 3540, 3670, 3786, 3904,
                4010, 4095])
DAY_HG = listed([0, 141, 284, 446, 571, 677, 768, 849, 923],  # Part 3.4
                [0, 1343, 1859, 2212, 2482, 2713, 2906, 3086, 3237, 3377, 3507, 3619, 3722, 3824, 3927,
                 4011, 4095])
NIGHT_HG = listed([0, 51, 103, 155, 208, 261, 314, 367, 420],  # Part 3.4
                  [0, 819, 1468, 1947, 2313, 2573, 2789, 2977, 3128, 3274, 3419, 3540, 3670, 3786, 3904,
                   4010, 4095])

# Where the high-gain curves equal their profile curves (Part 3.4).
DAY_HG_EQUAL_FROM = 143
NIGHT_HG_EQUAL_FROM = 44

# Offsets of g_gamma_table_day_highgain from g_gamma_table_day chosen here (the listed nodes give the
# rest). The spec wants the curve not below the profile curve before node 60, at most 27 below it over
# 60..133 with -27 reached, and not below it from node 134. The listed nodes give +24 at 48, -16 at 64,
# 80 and 96, -24 at 112 and -8 at 128: so the offset crosses zero at node 60, bottoms out at -27 at node
# 116 (between the -24 of node 112 and the climb to node 128) and is back to zero at node 134.
DAY_HG_CHOSEN_OFFSETS = {60: 0, 116: -27, 134: 0}
DAY_HG_MAX_ABOVE = 298
DAY_HG_MAX_BELOW = 27
DAY_HG_BELOW_RANGE = (60, 133)
NIGHT_HG_MAX_BELOW = 80
NIGHT_HG_BELOW_RANGE = (1, 39)

# Band (in output levels) around the ideal curve that the search explores; wide enough for every
# constraint to be met, narrow enough to stay fast.
BAND = 24


def pchip(points):
    """Monotone piecewise-cubic Hermite interpolant through points {x: y}; returns f(x)."""
    xs = sorted(points)
    ys = [float(points[x]) for x in xs]
    h = [float(xs[i + 1] - xs[i]) for i in range(len(xs) - 1)]
    m = [(ys[i + 1] - ys[i]) / h[i] for i in range(len(h))]
    d = [0.0] * len(xs)
    for k in range(1, len(xs) - 1):
        if m[k - 1] * m[k] > 0.0:  # weighted harmonic mean (Fritsch-Butland); 0 at a local extreme
            w1, w2 = 2.0 * h[k] + h[k - 1], h[k] + 2.0 * h[k - 1]
            d[k] = (w1 + w2) / (w1 / m[k - 1] + w2 / m[k])

    def edge(h0, h1, m0, m1):  # one-sided three-point slope, kept shape-preserving
        e = ((2.0 * h0 + h1) * m0 - h0 * m1) / (h0 + h1)
        if e * m0 <= 0.0:
            return 0.0
        if m0 * m1 <= 0.0 and abs(e) > 3.0 * abs(m0):
            return 3.0 * m0
        return e

    d[0] = edge(h[0], h[1], m[0], m[1])
    d[-1] = edge(h[-1], h[-2], m[-1], m[-2])

    def f(x):
        k = 0
        while k < len(h) - 1 and x >= xs[k + 1]:
            k += 1
        t = (x - xs[k]) / h[k]
        t2, t3 = t * t, t * t * t
        return ((2.0 * t3 - 3.0 * t2 + 1.0) * ys[k] + (t3 - 2.0 * t2 + t) * h[k] * d[k]
                + (-2.0 * t3 + 3.0 * t2) * ys[k + 1] + (t3 - t2) * h[k] * d[k + 1])

    return f


def nearest_curve(name, ideal, pinned, lo=None, hi=None, step_lo=None, step_hi=None):
    """The integer curve v[0..256] minimising sum (v[n] - ideal[n])^2 subject to v[n] = pinned[n] where
    pinned, lo[n] <= v[n] <= hi[n], step_lo[n] <= v[n] - v[n-1] <= step_hi[n] (n >= 1). Ties go to the
    lower value, so the result is deterministic."""
    lo = lo or {}
    hi = hi or {}
    step_lo = step_lo or {}
    step_hi = step_hi or {}
    candidates = []
    for n in range(NODES):
        if n in pinned:
            vals = [pinned[n]]
        else:
            a = max(int(ideal[n]) - BAND, lo.get(n, 0))
            b = min(int(ideal[n]) + 1 + BAND, hi.get(n, TOP))
            vals = list(range(a, b + 1))
        candidates.append(vals)
    INF = float("inf")
    cost = [{v: (v - ideal[0]) ** 2 for v in candidates[0]}]
    back = [{}]
    for n in range(1, NODES):
        s_lo, s_hi = step_lo.get(n, 1), step_hi.get(n, TOP)
        prev = cost[-1]
        prev_vals = sorted(v for v in prev if prev[v] < INF)
        here, link = {}, {}
        for v in candidates[n]:
            best, arg = INF, None
            for p in prev_vals:
                if s_lo <= v - p <= s_hi and prev[p] < best:
                    best, arg = prev[p], p
            if arg is not None:
                here[v] = best + (v - ideal[n]) ** 2
                link[v] = arg
        if not here:
            sys.exit(f"gen_gamma: no {name} curve meets the constraints at node {n}")
        cost.append(here)
        back.append(link)
    v = min(cost[-1], key=lambda x: (cost[-1][x], x))
    curve = [v]
    for n in range(NODES - 1, 0, -1):
        v = back[n][v]
        curve.append(v)
    return curve[::-1]


def build():
    """The four curves, in the order day, night, day high-gain, night high-gain."""
    first8_day = {n: (72, 88) for n in range(1, 9)}
    last16 = {n: (5, 6) for n in range(NODES - 16, NODES)}

    # g_gamma_table_day (Part 2.1).
    f = pchip(DAY)
    ideal = [f(n) for n in range(NODES)]
    bounds = {**first8_day, **last16}
    day = nearest_curve("day", ideal, DAY,
                        step_lo={n: b[0] for n, b in bounds.items()},
                        step_hi={n: b[1] for n, b in bounds.items()})

    # g_gamma_table_night (Part 2.2): below the colour curve at exactly 240 nodes. At node 240 the listed
    # nodes leave it 1 below (4010 against 4011) and it must climb 85 to the colour curve's 84 over the
    # last sixteen nodes, so the 17 nodes where it is not below are 0, 241 to 255 and 256.
    f = pchip(NIGHT)
    ideal = [f(n) for n in range(NODES)]
    bounds = {**{n: (54, 69) for n in range(1, 9)}, **last16}
    night = nearest_curve("night", ideal, NIGHT,
                          hi={n: day[n] - 1 for n in range(1, 241)},
                          lo={n: day[n] for n in range(241, 256)},
                          step_lo={n: b[0] for n, b in bounds.items()},
                          step_hi={n: b[1] for n, b in bounds.items()})

    # g_gamma_table_day_highgain (Part 3.4): day + offset.
    offsets = {n: v - day[n] for n, v in DAY_HG.items() if n < DAY_HG_EQUAL_FROM}
    offsets.update(DAY_HG_CHOSEN_OFFSETS)
    offsets.update({DAY_HG_EQUAL_FROM: 0, NODES - 1: 0})
    g = pchip(offsets)
    ideal = [day[n] + g(n) for n in range(NODES)]
    pinned = dict(DAY_HG)
    pinned.update({n: day[n] for n in range(DAY_HG_EQUAL_FROM, NODES)})
    first, last = DAY_HG_BELOW_RANGE
    lo = {n: day[n] for n in range(0, DAY_HG_EQUAL_FROM)}
    lo.update({n: day[n] - DAY_HG_MAX_BELOW for n in range(first, last + 1)})
    hi = {n: day[n] + DAY_HG_MAX_ABOVE for n in range(0, DAY_HG_EQUAL_FROM)}
    day_hg = nearest_curve("day high-gain", ideal, pinned, lo=lo, hi=hi,
                           step_lo={n: 5 for n in range(1, NODES)})

    # g_gamma_table_night_highgain (Part 3.4): night + offset, the offset zero from node 44.
    offsets = {n: v - night[n] for n, v in NIGHT_HG.items() if n < NIGHT_HG_EQUAL_FROM}
    offsets.update({NIGHT_HG_EQUAL_FROM: 0, NODES - 1: 0})
    g = pchip(offsets)
    ideal = [night[n] + g(n) for n in range(NODES)]
    pinned = dict(NIGHT_HG)
    pinned.update({n: night[n] for n in range(NIGHT_HG_EQUAL_FROM, NODES)})
    first, last = NIGHT_HG_BELOW_RANGE
    night_hg = nearest_curve("night high-gain", ideal, pinned,
                             lo={n: night[n] - NIGHT_HG_MAX_BELOW for n in range(first, last + 1)},
                             hi={n: night[n] - 1 for n in range(first, last + 1)},
                             step_lo={n: (51 if n <= 12 else 5) for n in range(1, NODES)},
                             step_hi={n: 53 for n in range(1, 13)})
    return day, night, day_hg, night_hg


def check(day, night, day_hg, night_hg):
    """Every property the Parts and the brief state; the same list as tests/gamma_curves_test.cpp."""
    problems = []

    def need(ok, what):
        if not ok:
            problems.append(what)

    def steps(c, a, b):  # the steps into nodes a..b
        return [c[n] - c[n - 1] for n in range(a, b + 1)]

    for name, c, nodes in (("day", day, DAY), ("night", night, NIGHT), ("day_highgain", day_hg, DAY_HG),
                           ("night_highgain", night_hg, NIGHT_HG)):
        need(len(c) == NODES and c[0] == 0 and c[-1] == TOP, f"{name}: 257 nodes from 0 to 4095")
        need(all(s > 0 for s in steps(c, 1, NODES - 1)), f"{name}: strictly increasing")
        need(all(c[n] == v for n, v in nodes.items()), f"{name}: listed nodes exact")
    need(all(72 <= s <= 88 for s in steps(day, 1, 8)), "day: first eight steps 72..88")
    need(all(5 <= s <= 6 for s in steps(day, 241, 256)), "day: last sixteen steps 5..6")
    need(all(54 <= s <= 69 for s in steps(night, 1, 8)), "night: first eight steps 54..69")
    need(all(5 <= s <= 6 for s in steps(night, 241, 256)), "night: last sixteen steps 5..6")
    need(sum(night[n] < day[n] for n in range(NODES)) == 240, "night: below day at exactly 240 nodes")
    dd = [day_hg[n] - day[n] for n in range(NODES)]
    need(all(d == 0 for d in dd[DAY_HG_EQUAL_FROM:]), "day_highgain: equal to day from node 143")
    need(max(dd[:DAY_HG_EQUAL_FROM]) == DAY_HG_MAX_ABOVE, "day_highgain: at most 298 above, reached")
    first, last = DAY_HG_BELOW_RANGE
    need(min(dd[first:last + 1]) == -DAY_HG_MAX_BELOW, "day_highgain: at most 27 below in 60..133, reached")
    need(all(d >= 0 for n, d in enumerate(dd) if not first <= n <= last), "day_highgain: not below outside")
    need(all(s >= 5 for s in steps(day_hg, 1, NODES - 1)), "day_highgain: steps of at least 5")
    need(day_hg[1] == 141 and day_hg[16] == 1343, "day_highgain: node 1 = 141, node 16 = 1343")
    nd = [night_hg[n] - night[n] for n in range(NODES)]
    need(all(d == 0 for d in nd[NIGHT_HG_EQUAL_FROM:]), "night_highgain: equal to night from node 44")
    first, last = NIGHT_HG_BELOW_RANGE
    need(all(-NIGHT_HG_MAX_BELOW <= d < 0 for d in nd[first:last + 1]), "night_highgain: below by <= 80")
    need(min(nd) == -NIGHT_HG_MAX_BELOW, "night_highgain: 80 below reached")
    need(all(51 <= s <= 53 for s in steps(night_hg, 1, 12)), "night_highgain: first twelve steps 51..53")
    need(all(s >= 5 for s in steps(night_hg, 1, NODES - 1)), "night_highgain: steps of at least 5")
    need(night_hg[1] == 51 and night_hg[16] == 819, "night_highgain: node 1 = 51, node 16 = 819")
    if problems:
        sys.exit("gen_gamma: generated curves break the spec:\n  " + "\n  ".join(problems))


def c_table(name, curve, comment):
    lines = [f"/* {comment} */", f"const uint32_t {name}[257] = {{"]
    for row in range(0, NODES, 16):
        values = ", ".join(f"{v:4d}" for v in curve[row:row + 16])
        lines.append(f"    /* {row:3d} */ {values},")
    lines.append("};")
    return "\n".join(lines) + "\n"


HEADER = """\
/*
 * Generated by tools/gamma/gen_gamma.py; do not edit. Change the generator and rerun it
 * (docs/tuning.md, "Gamma curves"); the test gamma_tables_match_generator fails while this file and the
 * generator disagree. Each row holds sixteen nodes and starts with its node number, so the first value of
 * a row is one of the spec's every-sixteenth-node values.
 */
"""


def sources(day, night, day_hg, night_hg):
    """{relative path: text} of the generated C sources."""
    profiles = ("/* Parts 2.1 and 2.2: the colour and night gamma curves, ISP_GAMMA_ATTR_S u16Table[257]. */\n"
                + HEADER + "#include <stdint.h>\n\n#include \"isptune.h\"\n#include \"profiles/profiles.h\"\n\n"
                + c_table("g_gamma_table_day", day,
                          "Part 2.1: the colour profile's curve (internal).")
                + "\n"
                + c_table("g_gamma_table_night", night,
                          "Part 2.2: the night profile's curve (exported through isptune.h)."))
    refresh = ("/* Part 3.4: the two high-gain gamma curves of the refreshes, ISP_GAMMA_ATTR_S u16Table[257]. */\n"
               + HEADER + "#include <stdint.h>\n\n#include \"refresh/refresh.h\"\n\n"
               + c_table("g_gamma_table_day_highgain", day_hg,
                         "Day refresh at G >= 55: equals g_gamma_table_day from node 143 (internal).")
               + "\n"
               + c_table("g_gamma_table_night_highgain", night_hg,
                         "Night refresh at G >= 33: equals g_gamma_table_night from node 44 (internal)."))
    return {"src/profiles/gamma_curves.c": profiles, "src/refresh/gamma_highgain.c": refresh}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--root", default=os.path.normpath(os.path.join(os.path.dirname(__file__), "..", "..")))
    parser.add_argument("--check", action="store_true", help="compare with the checked-in sources")
    parser.add_argument("--data", help="write the curves as columns n day night day_hg night_hg")
    args = parser.parse_args()

    curves = build()
    check(*curves)
    if args.data:
        with open(args.data, "w", encoding="ascii", newline="\n") as out:
            out.write("# node day night day_highgain night_highgain\n")
            for n in range(NODES):
                out.write(f"{n} {' '.join(str(c[n]) for c in curves)}\n")

    status = 0
    for rel, text in sources(*curves).items():
        path = os.path.join(args.root, rel)
        if args.check:
            try:
                with open(path, encoding="ascii", newline="") as f:
                    current = f.read()
            except OSError as e:
                print(f"gen_gamma: cannot read {path}: {e}")
                status = 1
                continue
            if current != text:
                print(f"gen_gamma: {rel} differs from the generator's output:")
                sys.stdout.writelines(difflib.unified_diff(current.splitlines(True), text.splitlines(True),
                                                           rel + " (checked in)", rel + " (generated)"))
                status = 1
        else:
            with open(path, "w", encoding="ascii", newline="\n") as f:
                f.write(text)
    return status


if __name__ == "__main__":
    sys.exit(main())
