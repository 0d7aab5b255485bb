/* The two atomic helpers GCC calls on the camera's ARMv5 Linux, in a few dozen bytes instead of 3.8 KB.
 *
 * ARMv5 (the Hi3516CV300's ARM926EJ-S) has neither a barrier instruction nor exclusive loads and stores,
 * so GCC turns a C11 atomic that needs a barrier into a call to __sync_synchronize and an exchange into a
 * loop around __sync_val_compare_and_swap_4. libgcc implements both, as every __sync helper, in one
 * object (linux-atomic.o) that is linked whole as soon as one is needed: 3,852 bytes of the ARM build for
 * two functions. These definitions come first on the link line, so libgcc's object is never pulled in.
 *
 * They do exactly what libgcc's do: call the kernel's user helpers, the fixed entry points the ARM Linux
 * kernel maps into every process (Documentation/arm/kernel_user_helpers.rst), which are correct on a
 * uniprocessor and on SMP kernels alike. Hidden, so that they are not exported; weak, so that a program
 * which links libgcc's object anyway (a C++ test needs its other helpers) takes libgcc's, with no clash.
 * Nothing is defined on any other target (the PC builds, and ARMv6 and later, have the instructions).
 */
#if defined(__arm__) && defined(__linux__) && defined(__ARM_ARCH) && __ARM_ARCH < 6

#include <stdint.h>

/* Kernel user helpers: addresses and contracts fixed by the kernel ABI. */
typedef void kuser_memory_barrier_fn(void);
typedef int kuser_cmpxchg_fn(int32_t oldval, int32_t newval, volatile int32_t *ptr); /* 0 when stored */
#define KUSER_MEMORY_BARRIER ((kuser_memory_barrier_fn *)0xffff0fa0)
#define KUSER_CMPXCHG ((kuser_cmpxchg_fn *)0xffff0fc0)

#define ISPTUNE_LIBGCC_HELPER __attribute__((weak, visibility("hidden")))

ISPTUNE_LIBGCC_HELPER void __sync_synchronize(void)
{
    KUSER_MEMORY_BARRIER();
}

/* Stores `newval` in *ptr if it holds `oldval`; returns what *ptr held, with a full barrier either way,
 * like GCC's builtin (whose signature this is). The kernel helper also fails when it is interrupted
 * between its load and its store, hence the loop. */
ISPTUNE_LIBGCC_HELPER unsigned int __sync_val_compare_and_swap_4(volatile void *ptr, unsigned int oldval,
                                                                  unsigned int newval)
{
    volatile int32_t *word = ptr;
    for (;;) {
        const unsigned int actual = (unsigned int)*word;
        if (actual != oldval) {
            KUSER_MEMORY_BARRIER();
            return actual;
        }
        if (KUSER_CMPXCHG((int32_t)oldval, (int32_t)newval, word) == 0)
            return oldval;
    }
}

#else
/* ISO C wants at least one declaration in a translation unit. */
typedef int isptune_no_armv5_atomics;
#endif
