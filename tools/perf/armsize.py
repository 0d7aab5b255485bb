#!/usr/bin/env python3
"""Performance targets: the size of the stripped ARM926 libisptune.so, and where the bytes go.

Usage: armsize.py ARM_BUILD_DIR [--map FILE] [--target-kib 40]

Strips a copy of ARM_BUILD_DIR/lib/libisptune.so with arm-linux-gnueabi-strip, reports its file size and
size(1)'s text/data/bss, then splits the loaded bytes by origin, from the linker's map of the library
(ARM_BUILD_DIR/libisptune.map; tools/perf/run.sh links with -Wl,-Map=... for this):

* .text: the library's own objects (isptune_obj), libgcc's soft-float and division helpers (the ARM926
  has neither FPU nor divide instruction), libgcc's linux-atomic.o (the __sync helpers, linked whole as
  soon as one C11 atomic needs a barrier or a compare-and-swap on ARMv5), the linker's ARM-to-Thumb stubs
  (Thumb builds only), start-up code and alignment;
* .rodata: the library's tables (its data symbols) and the rest of its read-only data (message texts,
  constants);
* dynamic linking: symbol, string, hash and version tables, relocations, PLT, GOT (the spec's exported
  names and the platform, host and libc calls the library imports).

Exit status 0 when the stripped file is under the target, 1 when not, 2 on a tool error.
"""
import argparse
import glob
import os
import re
import subprocess
import sys
import tempfile
from collections import defaultdict

TOOL = "arm-linux-gnueabi-"
DYNAMIC = (".gnu.hash", ".hash", ".dynsym", ".dynstr", ".gnu.version", ".gnu.version_r", ".rel.dyn",
           ".rel.plt", ".plt", ".got", ".dynamic", ".interp", ".note.gnu.build-id")


def run(*cmd):
    return subprocess.run(list(cmd), check=True, capture_output=True, text=True).stdout


def sections(path):
    out = {}
    for line in run(TOOL + "size", "-A", path).splitlines():
        fields = line.split()
        if len(fields) == 3 and fields[0].startswith(".") and fields[1].isdigit():
            out[fields[0]] = int(fields[1])
    return out


def origin(path):
    if path.startswith("linker stubs"):
        return "ARM/Thumb interworking stubs"
    if "isptune_obj.dir" in path:
        return "library"
    if "libgcc.a(linux-atomic" in path:
        return "libgcc atomics (linux-atomic.o)"
    if "libgcc.a(" in path:
        return "libgcc soft-float and division"
    return "start-up code and alignment"


def map_input_sections(map_file, output_section):
    """Bytes per origin of the input sections placed in `output_section` by the link."""
    sizes = defaultdict(int)
    inside = False
    pending = None  # an input section name wrapped onto a line of its own
    entry = re.compile(r"^ (\S+)?\s+0x[0-9a-f]+\s+0x([0-9a-f]+)\s+(\S.*)$")
    with open(map_file) as f:
        for line in f:
            line = line.rstrip("\n")
            if re.match(r"^\S", line):  # a new output section (or another top-level line)
                inside = line.split()[0] == output_section
                pending = None
                continue
            if not inside:
                continue
            if line.startswith(" *fill*"):
                sizes["start-up code and alignment"] += int(line.split()[2], 16)
                continue
            m = re.match(r"^ (\.\S+)$", line)
            if m:
                pending = m.group(1)
                continue
            m = entry.match(line)
            if m and (m.group(1) or pending) and not m.group(3).startswith("0x"):
                pending = None
                sizes[origin(m.group(3))] += int(m.group(2), 16)
    return sizes


def kib(n):
    return f"{n:,} B ({n / 1024:.1f} KiB)"


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("build", help="ARM build folder (cmake/arm-linux-gnueabi.cmake, MinSizeRel)")
    ap.add_argument("--map", help="the link map of libisptune.so (default BUILD/libisptune.map)")
    ap.add_argument("--target-kib", type=float, default=40.0)
    args = ap.parse_args()

    lib = os.path.join(args.build, "lib", "libisptune.so")
    map_file = args.map or os.path.join(args.build, "libisptune.map")
    objects = sorted(glob.glob(os.path.join(args.build, "src/CMakeFiles/isptune_obj.dir/**/*.o"), recursive=True))
    if not os.path.exists(lib) or not objects:
        print(f"armsize.py: no {lib} or no library objects in {args.build}", file=sys.stderr)
        return 2
    with tempfile.TemporaryDirectory() as tmp:
        stripped = os.path.join(tmp, "libisptune.so")
        run(TOOL + "strip", "-o", stripped, lib)
        file_size = os.path.getsize(stripped)
        berkeley = run(TOOL + "size", stripped).splitlines()[1].split()
        secs = sections(stripped)

    target = int(args.target_kib * 1024)
    verdict = "meets" if file_size < target else "MISSED"
    print(f"Stripped ARM926 libisptune.so: {kib(file_size)}; target < {args.target_kib:g} KiB: {verdict}")
    print(f"size(1): text {int(berkeley[0]):,}  data {int(berkeley[1]):,}  bss {int(berkeley[2]):,}\n")
    print("| part | bytes |")
    print("|---|---:|")
    if os.path.exists(map_file):
        text = map_input_sections(map_file, ".text")
        for k in ("library", "libgcc soft-float and division", "libgcc atomics (linux-atomic.o)",
                  "ARM/Thumb interworking stubs", "start-up code and alignment"):
            if k in text or not k.startswith("ARM/Thumb"):
                print(f"| .text: {k} | {text.get(k, 0):,} |")
    else:
        print(f"| .text: (no link map {map_file}: no split) | |")
    print(f"| .text total | {secs.get('.text', 0):,} |")
    # The library's tables: its read-only data symbols (nm sizes; nothing else in .rodata has a symbol).
    tables = 0
    for line in run(TOOL + "nm", "-S", "-t", "d", "--defined-only", lib).splitlines():
        f = line.split()
        if len(f) == 4 and f[2] in ("r", "R"):
            tables += int(f[1])
    rodata = secs.get(".rodata", 0)
    print(f"| .rodata: tables | {tables:,} |")
    print(f"| .rodata: message texts and constants | {rodata - tables:,} |")
    dyn = sum(secs.get(s, 0) for s in DYNAMIC)
    print(f"| dynamic linking ({', '.join(s for s in DYNAMIC if s in secs)}) | {dyn:,} |")
    rest = {s: n for s, n in secs.items()
            if s not in DYNAMIC and s not in (".text", ".rodata", ".bss", ".comment", ".ARM.attributes")}
    print(f"| other loaded sections ({', '.join(rest)}) | {sum(rest.values()):,} |")
    print(f"| .bss (not in the file) | {secs.get('.bss', 0):,} |")
    return 0 if file_size < target else 1


if __name__ == "__main__":
    sys.exit(main())
