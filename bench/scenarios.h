// Benchmarks: the measured operations in their steady state, shared by isptune_bench and the callgrind driver.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace isptune_bench {

// One measured operation. prepare() brings the library, the simulated MPP and the simulated host to the
// operation's steady state (logs off, warm caches, first-time work such as the gamma load already done);
// run() performs the operation once; check() says whether `runs` calls of run() since prepare() stayed on
// the steady path (no gamma write, no refresh during a quiet pass, ...). prepare and check return "" when
// fine, else the reason.
struct Scenario {
    const char *name;
    const char *what;
    std::string (*prepare)();
    void (*run)();
    std::string (*check)(std::size_t runs);
};

// Every scenario, in report order. The profile applications are listed only when the library defines
// ISP_SetParamDay / ISP_SetParamNight (Parts 2.3, 2.4).
const std::vector<Scenario> &scenarios();

// The scenario called `name`, or nullptr.
const Scenario *find_scenario(const std::string &name);

// Sends the library's standard output (its printf/puts messages) to /dev/null and returns a descriptor
// of the original standard output, for the program's own report. -1 on failure.
int divert_library_stdout();

} // namespace isptune_bench
