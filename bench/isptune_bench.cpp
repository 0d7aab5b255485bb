// Benchmarks: Google Benchmark timings of the quiet pass, the refreshes and the profile applications.
//
// Times include the simulated MPP and host (a mutex and a record copy per platform call) and libc's
// formatting of the library's messages, which go to /dev/null; the library's own share is what
// tools/perf/icount.py counts under callgrind. Run: isptune_bench [--benchmark_filter=REGEX] [...].
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <ostream>
#include <streambuf>
#include <string>

#include "scenarios.h"

namespace {

// An output stream on a file descriptor (the original standard output), sharing its file offset, so the
// report lands where the caller's output goes, also when that is a file.
class FdBuf : public std::streambuf {
public:
    explicit FdBuf(int fd) : fd_(fd) {}

protected:
    int_type overflow(int_type c) override
    {
        if (traits_type::eq_int_type(c, traits_type::eof()))
            return traits_type::not_eof(c);
        const char ch = traits_type::to_char_type(c);
        return write(fd_, &ch, 1) == 1 ? c : traits_type::eof();
    }
    std::streamsize xsputn(const char *s, std::streamsize n) override
    {
        std::streamsize done = 0;
        while (done < n) {
            const ssize_t w = write(fd_, s + done, static_cast<std::size_t>(n - done));
            if (w <= 0)
                break;
            done += w;
        }
        return done;
    }

private:
    int fd_;
};

void run_scenario(benchmark::State &state, const isptune_bench::Scenario *scenario)
{
    const std::string why = scenario->prepare();
    if (!why.empty()) {
        state.SkipWithError(why.c_str());
        return;
    }
    for (auto _ : state)
        scenario->run();
    const std::string broken = scenario->check(static_cast<std::size_t>(state.iterations()));
    if (!broken.empty())
        state.SkipWithError(broken.c_str());
    state.SetLabel(scenario->what);
}

} // namespace

int main(int argc, char **argv)
{
    // The library prints on every refresh; its messages go to /dev/null, the report to the real stdout.
    const int console = isptune_bench::divert_library_stdout();
    if (console < 0) {
        std::perror("isptune_bench: cannot divert standard output");
        return 1;
    }
    FdBuf report_buf(console);
    std::ostream report(&report_buf);

    for (const isptune_bench::Scenario &scenario : isptune_bench::scenarios())
        benchmark::RegisterBenchmark(scenario.name, run_scenario, &scenario);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    // Colours only on a terminal (the report's descriptor is not fd 1, which the library's output holds).
    benchmark::ConsoleReporter console_reporter(isatty(console) ? benchmark::ConsoleReporter::OO_Defaults
                                                                : benchmark::ConsoleReporter::OO_Tabular);
    console_reporter.SetOutputStream(&report);
    console_reporter.SetErrorStream(&report);
    benchmark::RunSpecifiedBenchmarks(&console_reporter);
    benchmark::Shutdown();
    return 0;
}
