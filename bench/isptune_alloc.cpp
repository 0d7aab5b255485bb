// Benchmarks: counts heap allocations while the library runs (design: "allocates nothing after load").
//
//   ./isptune_alloc [RUNS]
//
// The executable defines malloc, calloc, realloc, free and the aligned allocators, forwarding to glibc's
// own (__libc_malloc, ...), so every allocation of the process passes through here: the library's, the
// simulator's and libc's on the library's behalf (stdio buffers, say). For each scenario it counts the
// allocations during prepare() (fresh platform and host, the operation's first calls) and during RUNS
// steady runs, and prints the caller's address of the first few, should there be any.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "scenarios.h"

extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *ptr, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *ptr);
}

namespace {

// Counting is on only around the measured code; no lock, the scenarios run on this one thread.
bool g_counting;
std::size_t g_count, g_bytes;
constexpr int kCallers = 8;
void *g_callers[kCallers];

void count(std::size_t size, void *caller)
{
    if (!g_counting)
        return;
    if (g_count < kCallers)
        g_callers[g_count] = caller;
    ++g_count;
    g_bytes += size;
}

void start_counting()
{
    g_count = 0;
    g_bytes = 0;
    g_counting = true;
}

} // namespace

extern "C" {

void *malloc(std::size_t size)
{
    count(size, __builtin_return_address(0));
    return __libc_malloc(size);
}

void *calloc(std::size_t n, std::size_t size)
{
    count(n * size, __builtin_return_address(0));
    return __libc_calloc(n, size);
}

void *realloc(void *ptr, std::size_t size)
{
    count(size, __builtin_return_address(0));
    return __libc_realloc(ptr, size);
}

void free(void *ptr)
{
    __libc_free(ptr);
}

void *memalign(std::size_t alignment, std::size_t size)
{
    count(size, __builtin_return_address(0));
    return __libc_memalign(alignment, size);
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    count(size, __builtin_return_address(0));
    return __libc_memalign(alignment, size);
}

int posix_memalign(void **out, std::size_t alignment, std::size_t size)
{
    count(size, __builtin_return_address(0));
    void *p = __libc_memalign(alignment, size);
    if (p == nullptr)
        return 12; /* ENOMEM */
    *out = p;
    return 0;
}

} // extern "C"

int main(int argc, char **argv)
{
    const int console = isptune_bench::divert_library_stdout();
    FILE *out = console >= 0 ? fdopen(console, "w") : nullptr;
    if (out == nullptr) {
        std::perror("isptune_alloc: cannot divert standard output");
        return 1;
    }
    const long runs = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1000;
    if (runs < 1) {
        std::fprintf(stderr, "usage: %s [RUNS]\n", argv[0]);
        return 1;
    }
    // The library's first message makes libc allocate stdout's buffer, once per process; a host has
    // printed long before it loads the library, so the process here prints once first, too.
    std::printf("stdio warm-up\n");
    std::fflush(stdout);

    // The interposer must see what it claims not to see: one deliberate allocation is counted.
    start_counting();
    void *volatile probe = std::malloc(16);
    g_counting = false;
    std::free(probe);
    if (g_count != 1) {
        std::fprintf(out, "malloc interposer inactive (counted %zu of 1 allocation)\n", g_count);
        return 1;
    }
    std::fprintf(out, "malloc interposer active (1 deliberate allocation counted)\n");

    int status = 0;
    std::fprintf(out, "%-18s %12s %12s %14s %12s\n", "scenario", "setup allocs", "setup bytes", "steady runs",
                 "steady allocs");
    for (const isptune_bench::Scenario &s : isptune_bench::scenarios()) {
        start_counting();
        const std::string why = s.prepare();
        g_counting = false;
        const std::size_t setup_count = g_count, setup_bytes = g_bytes;
        if (!why.empty()) {
            std::fprintf(out, "%-18s prepare failed: %s\n", s.name, why.c_str());
            status = 1;
            continue;
        }
        start_counting();
        for (long i = 0; i < runs; ++i)
            s.run();
        g_counting = false;
        const std::string broken = s.check(static_cast<std::size_t>(runs));
        std::fprintf(out, "%-18s %12zu %12zu %14ld %12zu%s%s\n", s.name, setup_count, setup_bytes, runs, g_count,
                     broken.empty() ? "" : "  NOT STEADY: ", broken.c_str());
        for (std::size_t i = 0; i < g_count && i < kCallers; ++i)
            std::fprintf(out, "    allocation %zu from %p\n", i + 1, g_callers[i]);
        if (g_count != 0 || !broken.empty())
            status = 1;
    }
    return status;
}
