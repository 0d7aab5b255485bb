// Shared helpers for the library's tests (see isptune_test.h).
#include "isptune_test.h"

#include <cstddef>

std::vector<std::string> platform_calls(size_t first)
{
    std::vector<std::string> names;
    for (size_t i = first; i < sim_mpp_log_count(); ++i)
        names.emplace_back(sim_mpp_log_at(i)->function);
    return names;
}

long last_call_of(const char *function)
{
    for (size_t i = sim_mpp_log_count(); i-- > 0;)
        if (std::strcmp(sim_mpp_log_at(i)->function, function) == 0)
            return long(i);
    return -1;
}

HI_S32 failure_code_for(const std::string &call)
{
    if (call.rfind("HI_MPI_VPSS_", 0) == 0)
        return HI_ERR_VPSS_BUSY;
    if (call.rfind("HI_MPI_VI_", 0) == 0)
        return HI_ERR_VI_BUSY;
    return HI_ERR_ISP_NOT_INIT;
}

std::vector<std::string> host_log_texts()
{
    std::vector<std::string> texts;
    for (size_t i = 0; i < sim_host_log_count(); ++i)
        texts.emplace_back(sim_host_log_at(i).text);
    return texts;
}

void expect_only_syslog_entry(const char *text)
{
    ASSERT_EQ(sim_host_log_count(), 1u);
    const sim_host_log entry = sim_host_log_at(0);
    EXPECT_EQ(entry.service, SIM_HOST_QV_SYSLOG);
    EXPECT_EQ(entry.level, 0);
    EXPECT_EQ(entry.module, 14);
    EXPECT_STREQ(entry.text, text);
}

void expect_only_syserror_entry(const char *text)
{
    ASSERT_EQ(sim_host_log_count(), 1u);
    const sim_host_log entry = sim_host_log_at(0);
    EXPECT_EQ(entry.service, SIM_HOST_QV_SYSERROR);
    EXPECT_EQ(entry.module, 14);
    EXPECT_STREQ(entry.text, text);
}

testing::AssertionResult same_bytes(const void *a, const void *b, size_t size)
{
    const unsigned char *x = static_cast<const unsigned char *>(a), *y = static_cast<const unsigned char *>(b);
    for (size_t i = 0; i < size; ++i)
        if (x[i] != y[i])
            return testing::AssertionFailure() << "first difference at byte " << i << ": " << int(x[i])
                                               << " != " << int(y[i]);
    return testing::AssertionSuccess();
}

testing::AssertionResult same_bytes(const ISP_DEFOG_ATTR_S *a, const ISP_DEFOG_ATTR_S *b, size_t size)
{
    if (size != sizeof *a)
        return testing::AssertionFailure() << "size " << size << " is not that of ISP_DEFOG_ATTR_S";
    // The members' bytes (0 to 9), not their values: a setter may store any number in the enum members
    // (Part 4.7 stores the mode), and loading an enum outside its enumerators is undefined in C++.
    const size_t members = offsetof(ISP_DEFOG_ATTR_S, stAuto) + sizeof a->stAuto;
    return same_bytes(static_cast<const void *>(a), static_cast<const void *>(b), members);
}
