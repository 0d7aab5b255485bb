/* Virtual clock: sleep and usleep without real waiting, for tests and isptune-sim (design: "Seams", 3). */
#include "vclock.h"

#include <errno.h>
#include <math.h>
#include <pthread.h>
#include <time.h>
#include <unistd.h>

enum { VCLOCK_DEFAULT_TIMEOUT_MS = 10000 };

/* All state below is guarded by g_lock. */
static pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t g_gate;    /* stepping: blocked callers wait here for a grant */
static pthread_cond_t g_arrived; /* vclock_wait_blocked waits here for calls to arrive (CLOCK_MONOTONIC) */
static pthread_once_t g_once = PTHREAD_ONCE_INIT;

static unsigned g_generation = 1; /* bumped by every reset; tells blocked callers and threads of a reset */
static unsigned g_threads;        /* thread numbers handed out since the last reset */
static size_t g_calls;            /* calls since the last reset; call k has number k */
static size_t g_granted;          /* stepping: call k may pass once k <= g_granted */
static int g_stepping;
static uint64_t g_now_us;
static double g_factor;
static vclock_hook_fn g_hook;
static void *g_hook_context;
static struct vclock_call g_records[VCLOCK_MAX_CALLS];

/* A thread's number, valid while its generation is the current one (a reset renumbers threads). */
static _Thread_local unsigned t_generation;
static _Thread_local unsigned t_number;

static void vclock_init(void)
{
    /* The timed wait must run on the monotonic clock: a wall-clock jump must not end or stretch it. */
    pthread_condattr_t attr;
    pthread_condattr_init(&attr);
    pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
    pthread_cond_init(&g_arrived, &attr);
    pthread_condattr_destroy(&attr);
    pthread_cond_init(&g_gate, NULL);
}

static void lock(void)
{
    pthread_once(&g_once, vclock_init);
    pthread_mutex_lock(&g_lock);
}

static void unlock(void)
{
    pthread_mutex_unlock(&g_lock);
}

/* Real waiting for the real-time mode; the only real sleep in the clock, never used unless asked for. */
static void real_wait(double seconds)
{
    struct timespec left;
    left.tv_sec = (time_t)seconds;
    left.tv_nsec = (long)((seconds - (double)left.tv_sec) * 1e9);
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

static void vclock_call(enum vclock_kind kind, uint64_t duration_us)
{
    lock();
    const unsigned generation = g_generation;
    if (t_generation != generation) {
        t_generation = generation;
        t_number = ++g_threads;
    }
    const size_t number = ++g_calls;
    if (number <= VCLOCK_MAX_CALLS) {
        g_records[number - 1] = (struct vclock_call){ .kind = kind, .duration_us = duration_us,
                                                      .thread = t_number };
    }
    pthread_cond_broadcast(&g_arrived);

    while (g_stepping && number > g_granted && g_generation == generation) {
        pthread_cond_wait(&g_gate, &g_lock);
    }
    if (g_generation != generation) { /* reset while blocked: this call belongs to the old run */
        unlock();
        return;
    }
    const struct vclock_call call = { .kind = kind, .duration_us = duration_us, .start_us = g_now_us,
                                      .thread = t_number };
    if (number <= VCLOCK_MAX_CALLS) {
        g_records[number - 1].start_us = g_now_us;
    }
    g_now_us += duration_us;
    const double factor = g_factor;
    const vclock_hook_fn hook = g_hook;
    void *const hook_context = g_hook_context;
    unlock();

    if (factor > 0.0) {
        real_wait((double)duration_us * 1e-6 * factor);
    }
    if (hook != NULL) {
        hook(&call, number, hook_context);
    }
}

unsigned int sleep(unsigned int seconds)
{
    vclock_call(VCLOCK_SLEEP, (uint64_t)seconds * 1000000u);
    return 0; /* nothing left unslept */
}

int usleep(useconds_t usec)
{
    vclock_call(VCLOCK_USLEEP, (uint64_t)usec);
    return 0;
}

void vclock_reset(void)
{
    lock();
    g_generation++;
    g_threads = 0;
    g_calls = 0;
    g_granted = 0;
    g_stepping = 0;
    g_now_us = 0;
    g_factor = 0.0;
    g_hook = NULL;
    g_hook_context = NULL;
    pthread_cond_broadcast(&g_gate);
    unlock();
}

uint64_t vclock_now_us(void)
{
    lock();
    const uint64_t now = g_now_us;
    unlock();
    return now;
}

size_t vclock_call_count(void)
{
    lock();
    const size_t count = g_calls;
    unlock();
    return count;
}

struct vclock_call vclock_call_at(size_t i)
{
    struct vclock_call call = { .kind = VCLOCK_NONE };
    lock();
    if (i < g_calls && i < VCLOCK_MAX_CALLS) {
        call = g_records[i];
    }
    unlock();
    return call;
}

void vclock_step_mode(int on)
{
    if (!on) {
        vclock_free_run();
        return;
    }
    lock();
    if (!g_stepping) {
        g_stepping = 1;
        g_granted = g_calls;
    }
    unlock();
}

void vclock_allow(size_t n)
{
    lock();
    g_granted = (n > (size_t)-1 - g_granted) ? (size_t)-1 : g_granted + n;
    pthread_cond_broadcast(&g_gate);
    unlock();
}

int vclock_wait_blocked_for(size_t n, unsigned timeout_ms)
{
    struct timespec deadline;
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += (time_t)(timeout_ms / 1000u);
    deadline.tv_nsec += (long)(timeout_ms % 1000u) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1000000000L;
    }

    lock();
    while (g_calls < n) {
        if (pthread_cond_timedwait(&g_arrived, &g_lock, &deadline) == ETIMEDOUT) {
            break;
        }
    }
    const int result = (g_calls >= n) ? 0 : -1;
    unlock();
    return result;
}

int vclock_wait_blocked(size_t n)
{
    return vclock_wait_blocked_for(n, VCLOCK_DEFAULT_TIMEOUT_MS);
}

void vclock_free_run(void)
{
    lock();
    g_stepping = 0;
    pthread_cond_broadcast(&g_gate);
    unlock();
}

int vclock_set_realtime(double factor)
{
    if (!isfinite(factor) || factor < 0.0) {
        return -1;
    }
    lock();
    g_factor = factor;
    unlock();
    return 0;
}

void vclock_set_hook(vclock_hook_fn hook, void *context)
{
    lock();
    g_hook = hook;
    g_hook_context = context;
    unlock();
}
