// Test support for Parts 1.2 to 1.7 (see service_test_support.h).
#include "service_test_support.h"

#include <unistd.h>

#include <cstdio>

bool marker_exists()
{
    return access(kMarker, F_OK) == 0;
}

int reached(size_t call)
{
    return vclock_wait_blocked_for(call, 2000);
}

unsigned queries()
{
    return sim_mpp_call_count("HI_MPI_ISP_QueryExposureInfo");
}

int32_t status()
{
    return __atomic_load_n(&gISPStatus, __ATOMIC_SEQ_CST);
}

void set_status(int32_t value)
{
    __atomic_store_n(&gISPStatus, value, __ATOMIC_SEQ_CST);
}

void ServiceTest::SetUp()
{
    reset_simulators_and_clock();
    std::remove(kMarker);
}

void ServiceTest::TearDown()
{
    vclock_free_run(); // always before the join in QV_ISP_Stop
    QV_ISP_Stop();
    std::remove(kMarker);
}

void ServiceTest::start_held()
{
    vclock_step_mode(1);
    granted_ = vclock_call_count();
    ASSERT_EQ(QV_ISP_Start(), 0);
    ASSERT_EQ(wait_for_call(granted_ + 1), 0) << "the thread never reached sleep(10)";
}

void ServiceTest::step(size_t n)
{
    granted_ += n;
    vclock_allow(n);
    ASSERT_EQ(wait_for_call(granted_ + 1), 0) << "the thread did not come back to the clock";
}

int ServiceTest::wait_for_call(size_t call)
{
    return reached(call);
}
