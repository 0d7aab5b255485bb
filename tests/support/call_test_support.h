// Test support: call lists, captured outcomes, written records and the simulator-reset fixtures that
// the Part tests share (a test that defines its own Calls or Outcome does not include this header).
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
}

// Names of platform calls, in order.
using Calls = std::vector<std::string>;

// `calls` without the calls named in `dropped`.
inline Calls without(const Calls &calls, const Calls &dropped)
{
    Calls kept;
    for (const std::string &c : calls)
        if (std::find(dropped.begin(), dropped.end(), c) == dropped.end())
            kept.push_back(c);
    return kept;
}

// What a function under test returned and printed on standard output.
struct Outcome {
    int32_t result;
    std::string out;
};

// Runs `f` (returning int32_t) with standard output captured.
template <typename F> Outcome captured(F f)
{
    StdoutCapture capture;
    int32_t result = f();
    return {result, capture.take()};
}

// Stores a raw word into an enum field: values outside the enumerators (which the library stores
// unchecked, as the Parts say) must not pass through a C++ enum conversion or load.
template <typename E> void set_raw(E &field, uint32_t value)
{
    static_assert(sizeof(E) == sizeof value, "32-bit enum field");
    std::memcpy(&field, &value, sizeof value);
}
template <typename E> uint32_t raw(const E &field)
{
    uint32_t value;
    std::memcpy(&value, &field, sizeof value);
    return value;
}

// The record written by the last call of `set_call`.
template <typename T> T written_by(const char *set_call)
{
    long i = last_call_of(set_call);
    EXPECT_GE(i, 0) << "no " << set_call;
    return i < 0 ? T{} : logged_record<T>(size_t(i));
}

// Whether the last `set_call` wrote exactly `want`, byte for byte.
template <typename T> testing::AssertionResult wrote(const char *set_call, const T &want)
{
    T got = written_by<T>(set_call);
    return same_bytes(&got, &want, sizeof(T)) << " (" << set_call << ")";
}

#define EXPECT_WRITTEN(T, set_call, expected) EXPECT_TRUE(wrote<T>(set_call, expected))

// The record of log entry `index` (a setter's one write), which must also be the platform's record `id` now.
template <typename T> T written_record(sim_mpp_record_id id, size_t index = 1)
{
    T written = logged_record<T>(index);
    T now = platform_record<T>(id);
    EXPECT_TRUE(same_bytes(&written, &now, sizeof now));
    return written;
}

// A null argument refused: -1, `message` printed, no platform call.
void expect_null_refused(const Outcome &o, const char *message);
// No settings record from the host: -1, nothing printed, no platform call, "GetSysInfo failed" logged.
void expect_refused_without_host_record(const Outcome &o);

// ispParamReflashMark, read and written as the library's C11 atomics are.
inline int32_t reflash_mark()
{
    return __atomic_load_n(&ispParamReflashMark, __ATOMIC_SEQ_CST);
}
inline void set_reflash_mark(int32_t value)
{
    __atomic_store_n(&ispParamReflashMark, value, __ATOMIC_SEQ_CST);
}

// The simulated platform and host at power-on before every test.
inline void reset_simulators()
{
    sim_mpp_reset();
    sim_host_reset();
}

// ... and the virtual clock at zero too.
inline void reset_simulators_and_clock()
{
    reset_simulators();
    vclock_reset();
}

// Fixtures that start every test from the simulators' power-on state (with or without the clock).
class SimTest : public ::testing::Test {
protected:
    void SetUp() override { reset_simulators(); }
};

template <typename P> class SimTestWithParam : public ::testing::TestWithParam<P> {
protected:
    void SetUp() override { reset_simulators(); }
};

class SimClockTest : public ::testing::Test {
protected:
    void SetUp() override { reset_simulators_and_clock(); }
};
