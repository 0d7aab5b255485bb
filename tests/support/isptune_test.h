// Shared helpers for the library's tests: the platform's call log, the host's log, captured output.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

extern "C" {
#include "sim_host.h"
#include "sim_mpp.h"
#include "vclock.h"
}

// Names of the platform calls logged since the last sim_mpp_reset(), in order, from entry `first` on.
std::vector<std::string> platform_calls(size_t first = 0);

// The record of log entry `index` as a T (the copy the simulator took of what was written or returned).
template <typename T> T logged_record(size_t index)
{
    const sim_mpp_call *call = sim_mpp_log_at(index);
    T record;
    EXPECT_NE(call, nullptr) << "no log entry " << index;
    if (call == nullptr || call->record == nullptr || call->size != sizeof(T)) {
        ADD_FAILURE() << "log entry " << index << " has no record of " << sizeof(T) << " bytes";
        std::memset(&record, 0, sizeof record);
        return record;
    }
    std::memcpy(&record, call->record, sizeof record);
    return record;
}

// Index of the last log entry of `function`, or -1.
long last_call_of(const char *function);

// The current record `id` of the simulated platform.
template <typename T> T platform_record(sim_mpp_record_id id)
{
    EXPECT_EQ(sim_mpp_record_size(id), sizeof(T));
    T record;
    sim_mpp_read(id, &record);
    return record;
}

// The power-on record `id` of the simulated platform.
template <typename T> T power_on_record(sim_mpp_record_id id)
{
    EXPECT_EQ(sim_mpp_record_size(id), sizeof(T));
    T record;
    sim_mpp_power_on_record(id, &record);
    return record;
}

// The code the fault sweeps make platform call `call` fail with: HI_ERR_VPSS_BUSY (0xa0078012) for a VPSS
// call, HI_ERR_VI_BUSY (0xa0108012) for a VI call, HI_ERR_ISP_NOT_INIT (0xa01c8040) for any other.
HI_S32 failure_code_for(const std::string &call);

// Texts of the host's log entries since the last sim_host_reset(), in order.
std::vector<std::string> host_log_texts();

// The host's log holds exactly one entry, `text`, from module 14: through QV_SYSLOG at level 0, or through
// QV_SYSERROR.
void expect_only_syslog_entry(const char *text);
void expect_only_syserror_entry(const char *text);

// Everything the code under test prints on standard output while the object lives.
class StdoutCapture {
public:
    StdoutCapture() { testing::internal::CaptureStdout(); }
    ~StdoutCapture()
    {
        if (!taken_)
            testing::internal::GetCapturedStdout();
    }
    std::string take()
    {
        taken_ = true;
        return testing::internal::GetCapturedStdout();
    }

private:
    bool taken_ = false;
};

// Compares two records byte for byte and names the first differing offset.
testing::AssertionResult same_bytes(const void *a, const void *b, size_t size);

// ISP_DEFOG_ATTR_S is the one platform record of at most 16 bytes with padding (bytes 10 and 11): the
// x86-64 ABI returns it in registers, so a copy made by returning it by value keeps its members
// but not its padding. Its records are compared member by member; a stray write cannot hide in padding.
testing::AssertionResult same_bytes(const ISP_DEFOG_ATTR_S *a, const ISP_DEFOG_ATTR_S *b, size_t size);
