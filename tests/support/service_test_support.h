// Test support for Parts 1.2 to 1.7: the running service (the supervision thread on the stepping clock),
// its flags and the frame-rate marker file.
#pragma once

#include <cstddef>
#include <cstdint>

#include "call_test_support.h"
#include "core_access.h"

extern "C" {
#include "isptune.h"

// Part 1.2: one pass of the loop (src/core/core.h, C only); true when the loop should pause afterwards.
bool isp_supervision_pass(const SysInfo *info, ISP_EXP_INFO_S *exp);
}

// The marker file of Part 1.5.
inline constexpr const char *kMarker = "/tmp/FramerateAdjust";
bool marker_exists();

// vclock_wait_blocked with a short real-time limit: the supervision thread reaches its next clock call in
// microseconds, so a test that waits longer than this is wrong and should fail fast, not hang.
int reached(size_t call);

// Exposure queries so far (HI_MPI_ISP_QueryExposureInfo: one per pass, one more per refresh).
unsigned queries();

// gISPStatus, read and written as the library's C11 atomics are.
int32_t status();
void set_status(int32_t value);

// The simulators and the clock at power-on and no marker file before every test; after it the clock runs
// free and the service is stopped (always in that order: a thread held in the clock cannot be joined).
class ServiceTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts the service with stepping on; the thread is then held in its start-up sleep(10), call 1.
    void start_held();
    // Lets n clock calls through and waits until the thread is held in the next one. The first grant after
    // start_held runs the start-up and the first pass; each further grant runs one more pass.
    void step(size_t n = 1);
    // How the fixture waits for clock call `call` (reached, unless a test needs another limit).
    virtual int wait_for_call(size_t call);

    size_t granted_ = 0;
};
