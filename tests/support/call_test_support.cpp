// Test support: call lists, outcomes and written records (see call_test_support.h).
#include "call_test_support.h"

void expect_null_refused(const Outcome &o, const char *message)
{
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, message);
    EXPECT_TRUE(platform_calls().empty());
}

void expect_refused_without_host_record(const Outcome &o)
{
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "");
    EXPECT_TRUE(platform_calls().empty());
    expect_only_syslog_entry("GetSysInfo failed\n");
}
