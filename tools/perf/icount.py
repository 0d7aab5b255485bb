#!/usr/bin/env python3
"""Performance targets: the library's own instructions per operation, counted with callgrind.

Runs bench/isptune_icount of a benchmark build folder under callgrind, once per scenario, and keeps from
the collected costs only what the library itself executes:

* the driver collects nothing but the steady runs (CALLGRIND_TOGGLE_COLLECT around them), so set-up,
  start-up and the driver's own code outside that loop never count;
* the library's functions are the text symbols of the isptune_obj object files (the objects libisptune.so
  is made of); their self cost is the library's cost. Code the compiler inlined into them (sysinfo_get,
  isp_flag_load, memset of a small record) is theirs, as in the shipped .so; callgrind's default
  --skip-plt=yes charges the one-instruction PLT jump of each outgoing call to the caller, which is where
  the instruction lives in libisptune.so too;
* libm is added, as the design says ("including libm"): the inclusive cost of every call from a library
  function into libm (log10 in the dispatch, pow if an implementation used it);
* the simulator (libisptune-sim.so), the virtual clock, libc (printf, memcpy, mutexes the simulator takes)
  and the driver are reported for information, never counted.

No symbol name of the library may also be defined by the other objects of the driver (benchmark code,
virtual clock): the script checks that, so a function can never be attributed to the wrong side.

Usage: icount.py BUILD_DIR [--runs N] [--top K] [--keep DIR] [SCENARIO ...]
Exit status: 0 when every measured figure meets its target, 1 when one does not, 2 on a usage or tool error.
"""
import argparse
import glob
import os
import re
import subprocess
import sys
import tempfile
from collections import defaultdict

# Targets of design.md "Performance targets" (instructions per operation, x86-64 -O2, at G = 24).
TARGETS = {
    "quiet_pass": 60,
    "day_refresh_g24": 2000,
    "night_refresh_g24": 2000,
    "day_profile": 3000,
    "night_profile": 3000,
}


def text_symbols(objects):
    """Names of the functions defined in the given object files (nm types T, t, W, w)."""
    names = set()
    if not objects:
        return names
    out = subprocess.run(["nm", "--defined-only", "-P"] + objects, check=True, capture_output=True,
                         text=True).stdout
    for line in out.splitlines():
        fields = line.split()
        if len(fields) >= 2 and fields[1] in ("T", "t", "W", "w"):
            names.add(fields[0])
    return names


def library_symbols(build):
    lib_objects = sorted(glob.glob(os.path.join(build, "src/CMakeFiles/isptune_obj.dir/**/*.o"), recursive=True))
    if not lib_objects:
        sys.exit(f"icount.py: no library objects under {build}/src/CMakeFiles/isptune_obj.dir")
    other_objects = sorted(glob.glob(os.path.join(build, "bench/CMakeFiles/isptune_icount.dir/*.o")) +
                           glob.glob(os.path.join(build, "sim/CMakeFiles/isptune_vclock.dir/*.o")))
    lib = text_symbols(lib_objects)
    clash = lib & text_symbols(other_objects)
    if clash:
        sys.exit("icount.py: these names are defined by the library and by the driver, so their costs cannot "
                 "be told apart: " + ", ".join(sorted(clash)))
    return lib


class Profile:
    """Self costs per (object, function) and call costs per (caller, callee) of one callgrind output file."""

    def __init__(self, path):
        self.self_cost = defaultdict(int)   # (ob, fn) -> Ir
        self.call_cost = defaultdict(int)   # ((ob, fn), (cob, cfn)) -> inclusive Ir of those calls
        self.total = None
        self._parse(path)

    @staticmethod
    def _name(table, value):
        # Name compression: "(id) name" defines id, "(id)" refers to it.
        m = re.match(r"\((\d+)\)(?:\s(.*))?$", value)
        if not m:
            return value
        if m.group(2) is not None:
            table[m.group(1)] = m.group(2)
        return table[m.group(1)]

    def _parse(self, path):
        obs, fns = {}, {}
        npos = 1
        ob = fn = cob = cfn = None
        in_call = False
        summed = 0
        with open(path) as f:
            for raw in f:
                line = raw.rstrip("\n")
                if not line or line.startswith("#"):
                    continue
                c = line[0]
                if c.isdigit() or c in "+-*":
                    tokens = line.split()
                    cost = int(tokens[npos]) if len(tokens) > npos else 0
                    if in_call:
                        self.call_cost[((ob, fn), (cob or ob, cfn))] += cost
                        in_call = False
                        cob = None
                    else:
                        self.self_cost[(ob, fn)] += cost
                        summed += cost
                    continue
                key, _, value = line.partition("=")
                if key == "ob":
                    ob = self._name(obs, value)
                elif key == "fn":
                    fn = re.sub(r"'\d+$", "", self._name(fns, value))
                elif key == "cob":
                    cob = self._name(obs, value)
                elif key == "cfn":
                    cfn = re.sub(r"'\d+$", "", self._name(fns, value))
                elif key == "calls":
                    in_call = True
                elif key in ("fl", "fi", "fe", "cfi", "cfl", "jump", "jcnd"):
                    pass  # source files and jumps are not needed for the attribution
                elif line.startswith("positions:"):
                    npos = len(line.split()[1:])
                elif line.startswith("events:"):
                    if line.split()[1:] != ["Ir"]:
                        sys.exit(f"icount.py: {path}: expected the single event Ir, got {line}")
                elif line.startswith("totals:") or line.startswith("summary:"):
                    self.total = int(line.split()[1])
        if self.total is not None and self.total != summed:
            sys.exit(f"icount.py: {path}: self costs add up to {summed}, callgrind's total is {self.total}")
        self.total = summed


def object_kind(ob, driver):
    base = os.path.basename(ob or "")
    if base.startswith("libm.so") or base.startswith("libm-"):
        return "libm"
    if base.startswith("libisptune-sim"):
        return "simulator"
    if base.startswith("libc.so") or base.startswith("libc-"):
        return "libc"
    if ob and os.path.realpath(ob) == os.path.realpath(driver):
        return "driver"
    return "other"


def measure(build, scenario, runs, lib_syms, keep, top):
    driver = os.path.join(build, "bench", "isptune_icount")
    out_dir = keep or tempfile.mkdtemp(prefix="isptune-icount-")
    out_file = os.path.join(out_dir, f"callgrind.{scenario}.out")
    cmd = ["valgrind", "--tool=callgrind", "--collect-atstart=no", f"--callgrind-out-file={out_file}",
           driver, scenario, str(runs)]
    proc = subprocess.run(cmd, capture_output=True, text=True)
    if proc.returncode != 0:
        sys.stderr.write(proc.stderr)
        return None
    prof = Profile(out_file)
    if not keep:
        os.remove(out_file)
        os.rmdir(out_dir)

    own = defaultdict(int)        # library function -> self Ir
    by_kind = defaultdict(int)    # where the rest went
    for (ob, fn), cost in prof.self_cost.items():
        if object_kind(ob, driver) == "driver" and fn in lib_syms:
            own[fn] += cost
        else:
            by_kind[object_kind(ob, driver)] += cost
    libm = defaultdict(int)       # libm function called by the library -> inclusive Ir
    for ((ob, fn), (cob, cfn)), cost in prof.call_cost.items():
        if object_kind(ob, driver) == "driver" and fn in lib_syms and object_kind(cob, driver) == "libm":
            libm[cfn] += cost
    # What the library's libm calls cost is counted above; only the rest of libm (none expected) is not.
    by_kind["libm"] -= sum(libm.values())
    return {
        "own": sum(own.values()) / runs,
        "libm": sum(libm.values()) / runs,
        "total": prof.total / runs,
        "kinds": {k: v / runs for k, v in by_kind.items()},
        "hot": sorted(((c / runs, f) for f, c in own.items()), reverse=True)[:top],
        "libm_calls": sorted(((c / runs, f) for f, c in libm.items()), reverse=True),
    }


def fmt(x):
    return f"{x:,.0f}" if abs(x - round(x)) < 0.05 else f"{x:,.1f}"


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("build", help="benchmark build folder (-DISPTUNE_BUILD_BENCHMARKS=ON, -O2)")
    ap.add_argument("scenarios", nargs="*", help="scenarios to measure (default: all the driver lists)")
    ap.add_argument("--runs", type=int, default=1000, help="steady runs collected per scenario (1000)")
    ap.add_argument("--top", type=int, default=6, help="hot spots listed per scenario (6)")
    ap.add_argument("--keep", help="keep the callgrind output files in this folder")
    args = ap.parse_args()

    driver = os.path.join(args.build, "bench", "isptune_icount")
    if not os.access(driver, os.X_OK):
        print(f"icount.py: {driver} not built", file=sys.stderr)
        return 2
    listed = subprocess.run([driver, "--list"], check=True, capture_output=True, text=True).stdout
    available = [line.split("\t")[0] for line in listed.splitlines() if line]
    wanted = args.scenarios or available
    if args.keep:
        os.makedirs(args.keep, exist_ok=True)
    lib_syms = library_symbols(args.build)

    status = 0
    rows, details = [], []
    for name in wanted:
        if name not in available:
            rows.append(f"| {name} | not in this build | | | | |")
            continue
        r = measure(args.build, name, args.runs, lib_syms, args.keep, args.top)
        if r is None:
            rows.append(f"| {name} | driver failed | | | | |")
            status = 1
            continue
        counted = r["own"] + r["libm"]
        target = TARGETS.get(name)
        verdict = "-" if target is None else ("meets" if counted <= target else "MISSED")
        if target is not None and counted > target:
            status = 1
        rows.append(f"| {name} | {fmt(r['own'])} | {fmt(r['libm'])} | **{fmt(counted)}** | "
                    f"{'-' if target is None else f'<= {target:,}'} | {verdict} | {fmt(r['total'])} |")
        rest = ", ".join(f"{k} {fmt(v)}" for k, v in sorted(r["kinds"].items(), key=lambda kv: -kv[1]) if v)
        hot = ", ".join(f"{f} {fmt(c)}" for c, f in r["hot"])
        lm = ", ".join(f"{f} {fmt(c)}" for c, f in r["libm_calls"]) or "none"
        details.append(f"- `{name}`: library hot spots per run: {hot}; libm calls: {lm}; not counted: {rest}.")

    print(f"Instructions per operation (callgrind Ir, {args.runs} steady runs each, divided by the runs)\n")
    print("| operation | library | libm | counted | target | verdict | whole process |")
    print("|---|---:|---:|---:|---:|---|---:|")
    print("\n".join(rows))
    print()
    print("\n".join(details))
    return status


if __name__ == "__main__":
    sys.exit(main())
