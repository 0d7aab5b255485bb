// Benchmarks: the callgrind driver: runs one scenario RUNS times with instruction collection on, nothing else.
//
//   valgrind --tool=callgrind --collect-atstart=no ./isptune_icount SCENARIO [RUNS]
//   ./isptune_icount --list
//
// Only the RUNS steady runs lie between the two CALLGRIND_TOGGLE_COLLECT requests: the setup (platform
// and host reset, first refresh, 120 quiet passes) is not collected. Outside valgrind the requests are a
// few no-op instructions, so the program also runs on its own (as a smoke test). tools/perf/icount.py
// then keeps the library's own functions from the collected costs. Exit status 0 when the runs stayed
// steady, 1 when not, 2 for a scenario this build does not have (profile application not written yet).
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "scenarios.h"

int main(int argc, char **argv)
{
    const int console = isptune_bench::divert_library_stdout();
    FILE *out = console >= 0 ? fdopen(console, "w") : nullptr;
    if (out == nullptr) {
        std::perror("isptune_icount: cannot divert standard output");
        return 1;
    }
    if (argc == 2 && std::string(argv[1]) == "--list") {
        for (const isptune_bench::Scenario &s : isptune_bench::scenarios())
            std::fprintf(out, "%s\t%s\n", s.name, s.what);
        return 0;
    }
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: %s SCENARIO [RUNS] | --list\n", argv[0]);
        return 1;
    }
    const isptune_bench::Scenario *scenario = isptune_bench::find_scenario(argv[1]);
    if (scenario == nullptr) {
        std::fprintf(stderr, "isptune_icount: no scenario '%s' in this build (see --list)\n", argv[1]);
        return 2;
    }
    const long runs = argc == 3 ? std::strtol(argv[2], nullptr, 10) : 1000;
    if (runs < 1) {
        std::fprintf(stderr, "isptune_icount: RUNS must be a positive number\n");
        return 1;
    }

    const std::string why = scenario->prepare();
    if (!why.empty()) {
        std::fprintf(stderr, "isptune_icount: %s: %s\n", scenario->name, why.c_str());
        return 1;
    }
    CALLGRIND_TOGGLE_COLLECT;
    for (long i = 0; i < runs; ++i)
        scenario->run();
    CALLGRIND_TOGGLE_COLLECT;
    const std::string broken = scenario->check(static_cast<std::size_t>(runs));
    if (!broken.empty()) {
        std::fprintf(stderr, "isptune_icount: %s: %s\n", scenario->name, broken.c_str());
        return 1;
    }
    std::fprintf(out, "%s\t%ld runs\tsteady\n", scenario->name, runs);
    return 0;
}
