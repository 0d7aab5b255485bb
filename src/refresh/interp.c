/* Part 3.1: gain-level interpolation, and the noise-reduction record update shared by both refreshes. */
#include <stdio.h>
#include <string.h>

#include "refresh/refresh.h"

/* floor(n / 2^k) for any sign of n: C's division truncates toward zero, Part 3.1 rounds down. */
static int32_t floor_div_pow2(int32_t n, int32_t k)
{
    return n >= 0 ? n >> k : -((-n + (1 << k) - 1) >> k);
}

/* The same in 64 bits, for products beyond 32 bits (a 64-bit shift is a library call on the ARM926, so
 * the usual case keeps the 32-bit one). */
static int64_t floor_div_pow2_wide(int64_t n, int32_t k)
{
    return n >= 0 ? n >> k : -((-n + ((int64_t)1 << k) - 1) >> k);
}

/* The same formula for a gain outside its level (only a direct call makes one), in 64 bits, with the
 * double's clamps. Out of line, so that the usual case carries none of its registers. */
static __attribute__((noinline)) uint32_t interp_outside_level(const uint8_t *table, int32_t G, int32_t L)
{
    const int64_t d = (int32_t)table[L + 1] - (int32_t)table[L];
    const int64_t v = (int64_t)table[L] + floor_div_pow2_wide(d * ((int64_t)G - ((int64_t)1 << L)), L);
    if (v <= 0)
        return 0;
    return v > (int64_t)UINT32_MAX ? UINT32_MAX : (uint32_t)v;
}

uint32_t ISP_GainLevelInterp(const uint8_t table[ISP_LEVEL_COUNT], int32_t G, int32_t L)
{
    /* A level outside 0..10 would read outside the table. The refreshes refuse such a level before they
     * get here (ISP_CheckGainLevel, docs/decisions.md); the clamp makes an out-of-table read impossible
     * for any caller. */
    if (L < 0)
        L = 0;
    else if (L > ISP_LEVEL_MAX)
        L = ISP_LEVEL_MAX;
    /* The spec's steps are IEEE double arithmetic with pow(2.0, k); every one of them is exact here, so
     * the result is the integer formula T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L), with no floating
     * point on the camera's FPU-less CPU: 2^k is exact, (T[L+1] - T[L]) / 2^L is a scaled integer, and
     * for any 32-bit G the product and the sum need at most 50 significant bits of the double's 53. The
     * double's truncation to unsigned (below 0 gives 0, 2^32 and above the maximum) is the clamp.
     * tests/part_3_1_interp_test.cpp proves the two equal: for every L, G inside the level and pair of
     * entries, and across the whole 32-bit range of G. */
    const int32_t lo = 1 << L;
    if (G >= lo && G <= 2 * lo) { /* inside its level, the usual case: 32 bits suffice */
        const int32_t d = (int32_t)table[L + 1] - (int32_t)table[L];
        return (uint32_t)((int32_t)table[L] + floor_div_pow2(d * (G - lo), L));
    }
    return interp_outside_level(table, G, L);
}

int ISP_CheckGainLevel(const char *func, int32_t L)
{
    if (L >= 0 && L <= ISP_LEVEL_MAX)
        return 0;
    printf("%s: gain level %d is outside 0..10, nothing refreshed\n", func, (int)L);
    return -1;
}

int ISP_UpdateNrRecord(const IspNrTables *tables, int32_t dnr_mode, int32_t G, int32_t L,
                       const IspNrCaller *caller)
{
    VPSS_GRP_NRS_PARAM_S nrs; /* 64 bytes: the version word and the union of the V1 and V2 blocks */

    /* Steps 1 and 2: the version selects the block on the get as well as on the set. */
    memset(&nrs, 0, sizeof nrs);
    nrs.enNRVer = VPSS_NR_V2;
    HI_S32 ret = HI_MPI_VPSS_GetGrpNRSParam(0, &nrs);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_VPSS_GetGrpNRSParam %s %d failed %#x !!!\n", caller->func, caller->get_line,
               (unsigned)ret);
        return -1;
    }

    /* Step 3. */
    NRS_PARAM_V2_S *p = &nrs.stNRSParam_V2;
    p->IES0 = 0;
    nrs.enNRVer = VPSS_NR_V2;

    /* Step 4: the twenty fields the refresh always drives, in record order. Each store keeps the low
     * bits that fit the field (Part 3.1, Interfaces); the result always lies between two table entries. */
#define NR_INTERP(field) (p->field = (HI_U8)ISP_GainLevelInterp(tables->field, G, L))
    NR_INTERP(SBS0);
    NR_INTERP(SBS1);
    NR_INTERP(SBS2);
    NR_INTERP(SDS0);
    NR_INTERP(SDS1);
    NR_INTERP(SDS2);
    NR_INTERP(STH0);
    NR_INTERP(STH1);
    NR_INTERP(STH2);
    NR_INTERP(STH3);
    NR_INTERP(MDP);
    NR_INTERP(Pro3);
    NR_INTERP(MDDZ1);
    NR_INTERP(MDDZ2);
    NR_INTERP(TFS1);
    NR_INTERP(TFS2);
    NR_INTERP(SFC);
    NR_INTERP(TFC);
    NR_INTERP(TPC);
    NR_INTERP(TRC);

    /* Step 5: the pairs the user does not own (mode 1 owns the 2D pair, 2 the 3D pair, 3 both). */
    if (dnr_mode == 0 || dnr_mode == 2) {
        NR_INTERP(SBS3);
        NR_INTERP(SDS3);
    }
#undef NR_INTERP
    if (dnr_mode == 0 || dnr_mode == 1) {
        p->MATH1 = (HI_U16)ISP_GainLevelInterp(tables->MATH1, G, L);
        p->MATH2 = (HI_U16)ISP_GainLevelInterp(tables->MATH2, G, L);
    }

    /* Step 6. */
    ret = HI_MPI_VPSS_SetGrpNRSParam(0, &nrs);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_VPSS_SetGrpNRSParam %s %d failed %#x !!!\n", caller->func, caller->set_line,
               (unsigned)ret);
        return -1;
    }
    return 0;
}
