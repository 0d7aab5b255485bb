#!/bin/sh
# Performance targets (design.md): every figure of docs/performance.md with one command.
#
#   tools/perf/run.sh [Google Benchmark options, e.g. --benchmark_min_time=0.1]
#
# 1. builds an x86-64 -O2 benchmark folder (ISPTUNE_PERF_BUILD, default build/perf) and runs the Google
#    Benchmark timings (bench/isptune_bench);
# 2. counts the library's own instructions per operation under callgrind (tools/perf/icount.py);
# 3. counts heap allocations during the operations (bench/isptune_alloc) and lists allocator imports;
# 4. cross-builds the library with the arm preset's toolchain and build type (ISPTUNE_PERF_ARM_BUILD,
#    default build/perf-arm) and reports the stripped size (tools/perf/armsize.py);
# 5. times isptune-sim playing 24 simulated hours of scenarios/default.yaml (target: under 10 s).
# Every step runs; the exit status is 1 when a figure misses its target or a step fails, else 0.
set -u
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${ISPTUNE_PERF_BUILD:-$root/build/perf}
arm=${ISPTUNE_PERF_ARM_BUILD:-$root/build/perf-arm}
python=${PYTHON:-python3}
status=0

step() { printf '\n== %s\n\n' "$*"; }
fail() { echo "run.sh: $*" >&2; status=1; }

step "0. machine and tools"
echo "CPU: $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1), $(nproc) cores; $(uname -sr)"
echo "$(gcc --version | head -n 1); $(valgrind --version); $(arm-linux-gnueabi-gcc --version | head -n 1)"

# Release with -O2 (CMake's Release default is -O3); -g only adds line tables for callgrind_annotate,
# the generated code is the same.
step "build x86-64 -O2 benchmark folder $build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    "-DCMAKE_C_FLAGS_RELEASE=-O2 -g -DNDEBUG" "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -g -DNDEBUG" \
    -DISPTUNE_BUILD_TESTS=OFF -DISPTUNE_BUILD_BENCHMARKS=ON >/dev/null &&
cmake --build "$build" --target isptune isptune_bench isptune_icount isptune_alloc >/dev/null ||
    { fail "x86-64 build failed"; exit 1; }

step "1. Google Benchmark (simulated platform and host; the library's messages go to /dev/null)"
"$build/bench/isptune_bench" "$@" || fail "isptune_bench failed"

step "2. the library's own instructions per operation (callgrind)"
"$python" "$root/tools/perf/icount.py" "$build" || fail "an instruction count misses its target"

step "3. heap allocations"
"$build/bench/isptune_alloc" 1000 || fail "allocations during the operations"
imports=$(nm -D --undefined-only "$build/lib/libisptune.so" |
          grep -E ' (malloc|calloc|realloc|free|reallocarray|aligned_alloc|posix_memalign|memalign|valloc|strdup|strndup|fopen|asprintf|vasprintf)(@|$)')
if [ -n "$imports" ]; then
    fail "libisptune.so imports an allocating function:"; echo "$imports"
else
    echo "libisptune.so imports no allocating function (malloc, calloc, realloc, free, strdup, fopen, asprintf ...)"
fi

# The link map only tells armsize.py where the bytes come from; it changes nothing in the library.
step "4. stripped ARM926 size (toolchain cmake/arm-linux-gnueabi.cmake, MinSizeRel, as the arm preset)"
cmake -S "$root" -B "$arm" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/arm-linux-gnueabi.cmake" \
    -DCMAKE_BUILD_TYPE=MinSizeRel -DISPTUNE_BUILD_TESTS=OFF \
    "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,-Map=$arm/libisptune.map" >/dev/null &&
cmake --build "$arm" --target isptune >/dev/null || { fail "ARM build failed"; exit 1; }
"$python" "$root/tools/perf/armsize.py" "$arm" || fail "the ARM library misses its size target"

step "5. isptune-sim: 24 simulated hours of scenarios/default.yaml, -O2 (target: under 10 s)"
if cmake --build "$build" --target isptune-sim >/dev/null; then
    out=$(mktemp -d)
    start=$(date +%s%N)
    if "$build/bin/isptune-sim" run default --hours 24 --quiet --no-plots --out "$out" >"$out/run.log" 2>&1; then
        ms=$(( ($(date +%s%N) - start) / 1000000 ))
        grep -E '^(result|wall time)' "$out/run.log"
        if [ "$ms" -lt 10000 ]; then
            echo "24 simulated hours in $ms ms: meets (< 10 s)"
        else
            fail "24 simulated hours took $ms ms (target < 10 s)"
        fi
        rm -rf "$out"
    else
        fail "isptune-sim run failed (see $out/run.log)"
    fi
else
    fail "isptune-sim does not build"
fi

exit $status
