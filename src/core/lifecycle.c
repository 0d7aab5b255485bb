/* Part 1.7: service lifecycle: QV_ISP_Start and QV_ISP_Stop own gISPStatus and the thread handle. */
#include <pthread.h>
#include <stdio.h>

#include "core/core.h"

int32_t gISPStatus = 0;

/* The supervision thread's handle, valid while s_thread_exists is 1 (created and not yet joined);
 * s_thread_ended is 1 once that thread has returned from QV_ISP_Proc. */
static pthread_t s_thread;
static _Atomic int32_t s_thread_exists = 0;
static _Atomic int32_t s_thread_ended = 0;

void isp_service_thread_ends(void)
{
    atomic_store(&s_thread_ended, 1);
}

int32_t QV_ISP_Start(void)
{
    puts("-----------QV_ISP_Start----------");
    QV_SYSINFO(ISP_MODULE_CODE, "ISP_Start thread start-------\n");

    /* A second start must not make a second thread (docs/decisions.md): while the service runs it is a
     * no-op. A thread that has ended, or was told to by writing gISPStatus directly, is reclaimed first. */
    if (atomic_load(&s_thread_exists) == 1) {
        if (isp_flag_load(&gISPStatus) == 1 && atomic_load(&s_thread_ended) == 0)
            return 0;
        pthread_join(s_thread, NULL);
        atomic_store(&s_thread_exists, 0);
    }
    atomic_store(&s_thread_ended, 0);

    isp_flag_store(&gISPStatus, 1);
    if (pthread_create(&s_thread, NULL, QV_ISP_Proc, NULL) != 0) {
        /* Not running: a later stop must find nothing to join (docs/decisions.md). */
        isp_flag_store(&gISPStatus, 0);
        QV_SYSERROR(ISP_MODULE_CODE, "func(%s ::%d),create thread QV_ISP_Proc is Failure\n", "QV_ISP_Start", 354);
        return -1;
    }
    atomic_store(&s_thread_exists, 1);
    return 0;
}

int32_t QV_ISP_Stop(void)
{
    if (isp_flag_load(&gISPStatus) != 1)
        return 0;
    QV_SYSINFO(ISP_MODULE_CODE, "ISP_Stop thread stop-------\n");
    isp_flag_store(&gISPStatus, 0);
    if (atomic_load(&s_thread_exists) == 1) {
        pthread_join(s_thread, NULL);
        atomic_store(&s_thread_exists, 0);
    }
    return 0;
}
