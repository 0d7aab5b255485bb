/* Part 1.1: operation table: CreateIspDev, the sixteen operations and the cached IspConfig. */
#include <stddef.h>
#include <string.h>

#include "attributes/attributes.h"
#include "core/core.h"

/*
 * The cached configuration, zero at load; written only by get_config, read only by the set operations.
 * It is held as 25 atomic words, copied word by word with relaxed loads and stores, because the host may
 * call get_config and a set operation from two threads and nothing in the library takes a lock: the copy
 * is then defined behaviour (and ThreadSanitizer stays silent), and a set operation racing a get_config
 * sees each word either old or new, just as QV_ISP_GetConfig itself may mix old and new host fields
 * (Part 4.1, Concurrency). On the ARM926 a relaxed word access is a plain ldr/str.
 */
enum { CACHE_WORDS = sizeof(IspConfig) / sizeof(uint32_t) };
_Static_assert(sizeof(IspConfig) == CACHE_WORDS * sizeof(uint32_t), "IspConfig is a whole number of words");

_Static_assert(offsetof(IspConfig, f32Sharpness) % sizeof(uint32_t) == 0 &&
                   offsetof(IspConfig, u32Brightness) % sizeof(uint32_t) == 0 &&
                   offsetof(IspConfig, u32Contrast) % sizeof(uint32_t) == 0 &&
                   offsetof(IspConfig, u32Saturation) % sizeof(uint32_t) == 0,
               "the value fields are whole words of the cache");

static _Atomic uint32_t s_cache[CACHE_WORDS];

/* The private copy a record-based operation hands its setter: the cache itself is never exposed. */
static void cache_copy(IspConfig *copy)
{
    uint32_t words[CACHE_WORDS];
    for (size_t i = 0; i < CACHE_WORDS; ++i)
        words[i] = atomic_load_explicit(&s_cache[i], memory_order_relaxed);
    memcpy(copy, words, sizeof *copy);
}

void isp_cached_config(IspConfig *out)
{
    if (out != NULL)
        cache_copy(out);
}

/* One 32-bit field of the cache, by its offset in IspConfig. */
static uint32_t cache_word(size_t offset)
{
    return atomic_load_explicit(&s_cache[offset / sizeof(uint32_t)], memory_order_relaxed);
}

int32_t get_config(void)
{
    IspConfig config; /* step 1 */
    QV_ISP_GetConfig(&config);
    uint32_t words[CACHE_WORDS]; /* step 2: all 100 bytes */
    memcpy(words, &config, sizeof words);
    for (size_t i = 0; i < CACHE_WORDS; ++i)
        atomic_store_explicit(&s_cache[i], words[i], memory_order_relaxed);
    return 0;
}

/* Record-based operations: a private copy, the address of the group inside it, 0 whatever happened. */

int32_t set_exposure(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetExposureAttr(&copy.stExposure);
    return 0;
}

int32_t set_awb(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetWBAttr(&copy.stWb);
    return 0;
}

int32_t set_wdr(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetWDRAttr(&copy.stWdr);
    return 0;
}

int32_t set_blc(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetBLCAttr(&copy.stBlc);
    return 0;
}

int32_t set_flcker(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetFlickerAttr(&copy.stFlicker);
    return 0;
}

int32_t set_dnr(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetDNRAttr(&copy.stDnr);
    return 0;
}

int32_t set_iris(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetIRAttr(&copy.stIris);
    return 0;
}

int32_t set_defog(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetDefogAttr(&copy.stDefog);
    return 0;
}

int32_t set_SLInhibition(void)
{
    IspConfig copy;
    cache_copy(&copy);
    QV_ISP_SetSLInhibitionAttr(&copy.stSlInhibition);
    return 0;
}

/* Value-based operations: one field read straight from the cache. */

int32_t set_sharpness(void)
{
    const uint32_t word = cache_word(offsetof(IspConfig, f32Sharpness));
    float sharpness;
    memcpy(&sharpness, &word, sizeof sharpness);
    QV_ISP_SetSharpnessAttr(sharpness);
    return 0;
}

int32_t set_brightness(void)
{
    QV_ISP_SetBrightAttr(cache_word(offsetof(IspConfig, u32Brightness)));
    return 0;
}

int32_t set_Contrast(void)
{
    QV_ISP_SetContrastAttr(cache_word(offsetof(IspConfig, u32Contrast)));
    return 0;
}

int32_t set_Saturation(void)
{
    QV_ISP_SetSaturationAttr(cache_word(offsetof(IspConfig, u32Saturation)));
    return 0;
}

/* The slots in the fixed order of Part 1.1; the host calls by position. */
static const IspOperation kOperations[ISP_OPERATION_COUNT] = {
    QV_ISP_Start,   QV_ISP_Stop,    set_exposure,   set_awb,      set_wdr,      set_blc,
    set_flcker,     set_dnr,        set_iris,       set_defog,    set_sharpness, set_brightness,
    set_Contrast,   set_Saturation, set_SLInhibition, get_config,
};

void CreateIspDev(IspOperation *table)
{
    if (table == NULL) { /* nothing to fill; the function returns nothing, so the message is all */
        isp_attr_null_argument("CreateIspDev");
        return;
    }
    for (size_t slot = 0; slot < ISP_OPERATION_COUNT; ++slot)
        table[slot] = kOperations[slot];
}
