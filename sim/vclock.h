/* Virtual clock: sleep and usleep without real waiting, for tests and isptune-sim (design: "Seams", 3). */
#ifndef ISPTUNE_SIM_VCLOCK_H
#define ISPTUNE_SIM_VCLOCK_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * vclock.c defines `unsigned int sleep(unsigned int)` and `int usleep(useconds_t)` with the C library's
 * prototypes. Its object (isptune_vclock) is linked into an executable, never into a shared library, so the
 * dynamic linker binds every sleep/usleep call of the process to it, libisptune.so's calls included, and
 * also ahead of the sanitizer runtimes' interceptors.
 *
 * Virtual time starts at 0 and grows by the duration of every call when the call returns, so it is the sum
 * of all durations slept by all threads. By default no call waits for real.
 *
 * Stepping mode, to drive the supervision thread pass by pass (Part 1.2 sleeps 10 s once, then 33,333 us
 * per pass). Calls are numbered 1, 2, ... from the last reset, in the order they reach the clock. With
 * stepping on, call k blocks until k calls have been granted:
 *
 *     vclock_step_mode(1);
 *     QV_ISP_Start();
 *     ASSERT_EQ(vclock_wait_blocked(1), 0);   // the thread is in its start-up sleep(10)
 *     vclock_allow(1);                         // let it go: baseline settings, first pass
 *     ASSERT_EQ(vclock_wait_blocked(2), 0);   // the first pass is over, the thread is in usleep
 *     ...
 *     vclock_free_run();                       // ALWAYS before QV_ISP_Stop (or any join)
 *     QV_ISP_Stop();
 *
 * A thread blocked in the clock cannot notice a stop, so a join while stepping would deadlock: every test
 * (or test fixture TearDown) that turns stepping on must call vclock_free_run() before joining.
 */

/* The kind of a recorded call. */
enum vclock_kind {
    VCLOCK_NONE = 0, /* returned by vclock_call_at for an index that was not kept */
    VCLOCK_SLEEP,    /* sleep(seconds) */
    VCLOCK_USLEEP,   /* usleep(microseconds) */
};

/* One recorded call. */
struct vclock_call {
    enum vclock_kind kind;
    uint64_t duration_us; /* the requested duration, in microseconds (sleep(10) -> 10000000) */
    uint64_t start_us;    /* virtual time when the call was let through (its end is start_us + duration_us) */
    unsigned thread;      /* the calling thread's number: 1 for the first thread to use the clock since the
                             last reset, 2 for the next, ... */
};

/* The first VCLOCK_MAX_CALLS calls are kept; later calls are counted, timed and stepped but not kept. */
enum { VCLOCK_MAX_CALLS = 8192 };

/*
 * Back to the start: time 0, no calls, thread numbering restarts, stepping off, real-time factor 0, no hook. Callers
 * blocked in stepping mode are released and return without being counted. Call it when no other thread is
 * using the clock, normally at the start of a test.
 */
void vclock_reset(void);

/* Virtual time in microseconds since the last reset. */
uint64_t vclock_now_us(void);

/* Number of calls made since the last reset (kept or not), including calls still blocked. */
size_t vclock_call_count(void);

/* Call number i + 1 (0-based index); kind VCLOCK_NONE when i >= min(count, VCLOCK_MAX_CALLS). */
struct vclock_call vclock_call_at(size_t i);

/*
 * Stepping on (nonzero) or off. Turning it on grants every call made so far, so the next call is the first
 * to block. Turning it off is vclock_free_run().
 */
void vclock_step_mode(int on);

/* Stepping: let n more calls through (in call order), now or when they arrive. */
void vclock_allow(size_t n);

/*
 * Wait until the n-th call since the last reset has been made, that is, it is blocked in stepping mode or
 * has already passed. Returns 0 then, or -1 when that has not happened within 10 s of real time (a test
 * that is wrong must fail, not hang). This is synchronisation on a condition variable, not a sleep.
 */
int vclock_wait_blocked(size_t n);

/* vclock_wait_blocked with a chosen real-time limit in milliseconds. */
int vclock_wait_blocked_for(size_t n, unsigned timeout_ms);

/* Stepping off; every blocked caller is released at once and later calls pass freely. */
void vclock_free_run(void);

/*
 * Real waiting for isptune-sim --realtime: each call also waits duration × factor of real time after it is
 * let through (0: no real waiting, the default; 1: wall-clock speed; 0.1: ten times faster). Virtual time
 * is unaffected. Returns 0, or -1 (and changes nothing) for a negative or non-finite factor.
 */
int vclock_set_realtime(double factor);

/*
 * A hook run after every call, on the calling thread, once the call has been let through, its duration
 * added to virtual time and (in real-time mode) waited: isptune-sim advances its world there, so the world
 * moves with virtual time at points that do not depend on thread scheduling. `call` describes the call
 * (start_us + duration_us is the virtual time now); `number` is its call number since the last reset.
 * The clock's lock is not held while the hook runs, so it may call anything, sleep and usleep included
 * (each such call runs the hook again, on its own thread). NULL removes the hook; vclock_reset does too.
 */
typedef void (*vclock_hook_fn)(const struct vclock_call *call, size_t number, void *context);
void vclock_set_hook(vclock_hook_fn hook, void *context);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_SIM_VCLOCK_H */
