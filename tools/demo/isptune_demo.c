/* isptune-demo: the day and night 3D noise-reduction records that the refreshes write, at a few gains. */
#include <math.h>
#include <stdio.h>

#include "refresh/refresh.h"

#ifdef ISPTUNE_PLATFORM_SIM
#include "sim_mpp.h"
#endif

static const int32_t kGains[] = {1, 2, 3, 4, 6, 8, 12, 16, 24, 32, 48, 62};

static int32_t gain_level(int32_t G)
{
    return (int32_t)(log10((double)G) / 0.3010299956639812); /* Part 1.3 */
}

static int print_profile(const char *name, const IspNrTables *tables)
{
    static const IspNrCaller caller = {"isptune-demo", 0, 0};
    printf("\n%s profile: VPSS 3DNR record (version 2) written at system gain G, level L, mode 0\n", name);
    printf("  G  L  SBS0-3           SDS0-3           STH0-3           MDP Pro3 MATH1 MATH2 MDDZ1-2 "
           "TFS1-2 SFC TFC TPC TRC\n");
    for (size_t i = 0; i < sizeof kGains / sizeof kGains[0]; ++i) {
        int32_t G = kGains[i], L = gain_level(G);
        if (ISP_UpdateNrRecord(tables, 0, G, L, &caller) != 0)
            return -1;
        VPSS_GRP_NRS_PARAM_S nrs = {.enNRVer = VPSS_NR_V2};
        if (HI_MPI_VPSS_GetGrpNRSParam(0, &nrs) != HI_SUCCESS)
            return -1;
        const NRS_PARAM_V2_S *p = &nrs.stNRSParam_V2;
        printf(" %2d %2d  %3u %3u %3u %3u  %3u %3u %3u %3u  %3u %3u %3u %3u  %3u %4u %5u %5u %3u %3u "
               "%3u %3u  %3u %3u %3u %3u\n",
               (int)G, (int)L, p->SBS0, p->SBS1, p->SBS2, p->SBS3, p->SDS0, p->SDS1, p->SDS2, p->SDS3,
               p->STH0, p->STH1, p->STH2, p->STH3, p->MDP, p->Pro3, p->MATH1, p->MATH2, p->MDDZ1, p->MDDZ2,
               p->TFS1, p->TFS2, p->SFC, p->TFC, p->TPC, p->TRC);
    }
    return 0;
}

int main(void)
{
    printf("isptune-demo: gain-scheduled 3D noise reduction (Parts 3.1, 3.4, 2.2) on the %s platform\n",
#ifdef ISPTUNE_PLATFORM_SIM
           "simulated"
#else
           "vendor"
#endif
    );
    if (print_profile("day (colour)", &g_3dnr_tables_day) != 0 ||
        print_profile("night", &g_3dnr_tables_night) != 0) {
        fprintf(stderr, "isptune-demo: a platform call failed\n");
        return 1;
    }
    return 0;
}
