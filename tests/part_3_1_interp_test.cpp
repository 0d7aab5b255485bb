// Part 3.1: gain-level interpolation and the noise-reduction record update.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
#include "refresh/refresh.h"
#include "sim_mpp.h"
}

namespace {

using Table = std::array<uint8_t, ISP_LEVEL_COUNT>;

Table table_with(int level, uint8_t lo, uint8_t hi)
{
    Table t{};
    for (int i = 0; i < ISP_LEVEL_COUNT; ++i)
        t[i] = uint8_t(200 + i); // distinctive values around the pair
    t[level] = lo;
    t[level + 1] = hi;
    return t;
}

// The spec's steps, typed independently from the library: IEEE double with pow, in the stated order.
uint32_t spec_interp(const Table &t, int32_t G, int32_t L)
{
    double d = (double)((int32_t)t[L + 1] - (int32_t)t[L]);
    double hi = std::pow(2.0, (double)(L + 1)), lo = std::pow(2.0, (double)L);
    double slope = d / (hi - lo);
    double offset = (double)G - std::pow(2.0, (double)L);
    double v = (double)t[L] + slope * offset;
    if (v < 0)
        return 0;
    if (v >= 4294967296.0)
        return 4294967295u;
    return (uint32_t)v;
}

// The integer formula of Part 3.1 with floor division.
int64_t integer_formula(int64_t a, int64_t b, int64_t G, int L)
{
    int64_t num = (b - a) * (G - (int64_t(1) << L)), den = int64_t(1) << L;
    int64_t q = num / den;
    if (num % den != 0 && num < 0)
        --q;
    return a + q;
}

} // namespace

// ---- the rule ------------------------------------------------------------------------------------

// Exhaustive over its whole domain: every level 0..10, every G in [2^L, 2^(L+1)], every pair of 8-bit
// entries (135 million cases), against the integer formula and against the spec's double steps. The
// domain is cut into shards of about four million cases so CTest spreads them over the cores and each
// stays short under qemu-arm too.
struct InterpShard {
    int L;
    int first_a, last_a; // entries T[L] in first_a..last_a, every T[L+1]
};

std::vector<InterpShard> interp_shards()
{
    std::vector<InterpShard> shards;
    for (int L = 0; L <= ISP_LEVEL_MAX; ++L) {
        int blocks = L > 6 ? 1 << (L - 6) : 1;
        for (int k = 0; k < blocks; ++k)
            shards.push_back({L, 256 / blocks * k, 256 / blocks * (k + 1) - 1});
    }
    return shards;
}

class InterpExhaustive : public ::testing::TestWithParam<InterpShard> {};

TEST_P(InterpExhaustive, EqualsIntegerFormulaAndSpecArithmetic)
{
    const InterpShard shard = GetParam();
    const int L = shard.L;
    const int32_t lo = 1 << L, hi = 2 << L;
    // The spec's pow(2.0, L) and pow(2.0, L + 1), and each slope d / (hi - lo), computed once: the steps
    // are the same per case, so hoisting them changes no result.
    const double dlo = std::pow(2.0, (double)L), dhi = std::pow(2.0, (double)(L + 1));
    double slope[511];
    for (int d = -255; d <= 255; ++d)
        slope[d + 255] = (double)d / (dhi - dlo);

    Table t = table_with(L, 0, 0);
    long mismatches = 0;
    for (int a = shard.first_a; a <= shard.last_a; ++a) {
        t[L] = uint8_t(a);
        for (int b = 0; b < 256; ++b) {
            t[L + 1] = uint8_t(b);
            for (int32_t G = lo; G <= hi; ++G) {
                uint32_t got = ISP_GainLevelInterp(t.data(), G, L);
                int64_t want = integer_formula(a, b, G, L);
                double v = (double)a + slope[b - a + 255] * ((double)G - dlo); // steps 1 to 5
                uint32_t spec = v < 0 ? 0u : (uint32_t)v;                       // step 6 (v < 256 here)
                if (got != uint32_t(want) || got != spec) {
                    if (++mismatches < 5)
                        ADD_FAILURE() << "L=" << L << " G=" << G << " T[L]=" << a << " T[L+1]=" << b
                                      << " got " << got << " want " << want << " spec " << spec;
                }
            }
        }
    }
    EXPECT_EQ(mismatches, 0);
}

INSTANTIATE_TEST_SUITE_P(EveryLevel, InterpExhaustive, ::testing::ValuesIn(interp_shards()),
                         [](const testing::TestParamInfo<InterpShard> &shard_info) {
                             return "L" + std::to_string(shard_info.param.L) + "_T" + std::to_string(shard_info.param.first_a) +
                                    "to" + std::to_string(shard_info.param.last_a);
                         });

TEST(Interp, GainOneLevelZeroGivesEntryZero)
{
    Table t = table_with(0, 37, 250);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), 1, 0), 37u);
}

TEST(Interp, Gain62Level5IsT5PlusFloorOfThirtyThirtySeconds)
{
    Table rising = table_with(5, 100, 164);  // 100 + floor(64 * 30 / 32) = 160
    EXPECT_EQ(ISP_GainLevelInterp(rising.data(), 62, 5), 160u);
    Table falling = table_with(5, 100, 67);  // 100 + floor(-33 * 30 / 32) = 100 - 31 (-30.9375 rounds down)
    EXPECT_EQ(ISP_GainLevelInterp(falling.data(), 62, 5), 69u);
}

TEST(Interp, Gain3Level1From40To60Gives50)
{
    Table t = table_with(1, 40, 60);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), 3, 1), 50u);
}

TEST(Interp, FallingTableRoundsDown)
{
    Table t = table_with(2, 80, 60);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), 6, 2), 70u);  // 80 - 20 * 2 / 4 exactly
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), 7, 2), 65u);  // 80 - 15
    Table t61 = table_with(2, 80, 61);
    EXPECT_EQ(ISP_GainLevelInterp(t61.data(), 7, 2), 65u); // 80 + floor(-14.25) = 80 - 15
}

TEST(Interp, SpecExampleLevel4From75To60AtGain20Gives71)
{
    Table t = table_with(4, 75, 60);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), 20, 4), 71u);
}

TEST(Interp, ContinuousAcrossLevelBoundaries)
{
    Table t{};
    for (int i = 0; i < ISP_LEVEL_COUNT; ++i)
        t[i] = uint8_t(17 * i + 3);
    for (int L = 0; L < ISP_LEVEL_MAX; ++L) {
        EXPECT_EQ(ISP_GainLevelInterp(t.data(), 1 << L, L), t[L]) << L;
        EXPECT_EQ(ISP_GainLevelInterp(t.data(), 2 << L, L), t[L + 1]) << L;
        EXPECT_EQ(ISP_GainLevelInterp(t.data(), 2 << L, L + 1), t[L + 1]) << L;
    }
}

// Outside the level's range the spec's double arithmetic still decides, with its clamps.
TEST(Interp, NegativeValueGivesZero)
{
    Table t = table_with(0, 0, 255);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), -1000, 0), 0u);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), -1000, 0), spec_interp(t, -1000, 0));
}

TEST(Interp, ValueOfTwoToThe32OrMoreGivesMaximum)
{
    Table t = table_with(0, 0, 255);
    EXPECT_EQ(ISP_GainLevelInterp(t.data(), INT32_MAX, 0), 4294967295u);
    EXPECT_EQ(spec_interp(t, INT32_MAX, 0), 4294967295u);
}

TEST(Interp, GainOutsideItsLevelFollowsTheSpecArithmetic)
{
    Table t = table_with(3, 10, 90);
    for (int32_t G : {0, 1, 7, 17, 40, 100})
        EXPECT_EQ(ISP_GainLevelInterp(t.data(), G, 3), spec_interp(t, G, 3)) << G;
}

// The library has no floating point: outside the level it uses 64-bit integers. Every level, the extreme
// and middle pairs of entries, and gains across the whole 32-bit range (both ends, every power of two and
// its neighbours, and a fixed pseudo-random sample) give what the spec's double arithmetic gives.
TEST(Interp, AcrossThe32BitGainRangeEqualsTheSpecArithmetic)
{
    std::vector<int32_t> gains = {INT32_MIN, INT32_MIN + 1, -1, 0, INT32_MAX - 1, INT32_MAX};
    for (int k = 0; k < 31; ++k)
        for (int32_t delta : {-1, 0, 1})
            gains.push_back(int32_t((int64_t(1) << k) + delta));
    uint32_t seed = 12345u;
    for (int i = 0; i < 2000; ++i) {
        seed = seed * 1664525u + 1013904223u; // a fixed linear congruential sequence
        gains.push_back(int32_t(seed));
    }
    const uint8_t entries[] = {0, 1, 2, 127, 128, 253, 254, 255};
    for (int L = 0; L <= ISP_LEVEL_MAX; ++L)
        for (uint8_t a : entries)
            for (uint8_t b : entries) {
                const Table t = table_with(L, a, b);
                for (int32_t G : gains)
                    ASSERT_EQ(ISP_GainLevelInterp(t.data(), G, L), spec_interp(t, G, L))
                        << "L " << L << " T[L] " << int(a) << " T[L+1] " << int(b) << " G " << G;
            }
}

TEST(Interp, LevelOutsideTheTableNeverReadsOutside)
{
    // Exactly 12 bytes on the heap: AddressSanitizer reports any read outside them.
    std::unique_ptr<uint8_t[]> t(new uint8_t[ISP_LEVEL_COUNT]);
    for (int i = 0; i < ISP_LEVEL_COUNT; ++i)
        t[i] = uint8_t(10 * i);
    EXPECT_EQ(ISP_GainLevelInterp(t.get(), 1, -1), 0u);         // clamped to level 0
    EXPECT_EQ(ISP_GainLevelInterp(t.get(), 1024, 11), 100u);    // clamped to level 10: T[10]
    EXPECT_EQ(ISP_GainLevelInterp(t.get(), 2048, 11), 110u);    // T[11]
    EXPECT_EQ(ISP_GainLevelInterp(t.get(), 1, INT32_MIN), 0u);
    EXPECT_EQ(ISP_GainLevelInterp(t.get(), 2048, INT32_MAX), 110u);
}

// ---- the level check the refreshes make (docs/decisions.md) ---------------------------------------

TEST(CheckGainLevel, AcceptsLevels0To10)
{
    for (int L = 0; L <= ISP_LEVEL_MAX; ++L)
        EXPECT_EQ(ISP_CheckGainLevel("f", L), 0) << L;
}

TEST(CheckGainLevel, RefusesLevelOutside0To10WithMessage)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(ISP_CheckGainLevel("ISP_SetParamDayRefresh", 11), -1);
    EXPECT_EQ(ISP_CheckGainLevel("ISP_SetParamNightRefresh", -1), -1);
    EXPECT_EQ(ISP_CheckGainLevel("ISP_SetParamNightRefresh", INT32_MIN), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "ISP_SetParamDayRefresh: gain level 11 is outside 0..10, nothing refreshed\n"
              "ISP_SetParamNightRefresh: gain level -1 is outside 0..10, nothing refreshed\n"
              "ISP_SetParamNightRefresh: gain level -2147483648 is outside 0..10, nothing refreshed\n");
}

TEST(Interp, GainBelowOneFollowsTheSpecArithmetic)
{
    Table rising = table_with(0, 100, 150);   // v = 100 + 50 * (G - 1): G = 0 gives 50
    EXPECT_EQ(ISP_GainLevelInterp(rising.data(), 0, 0), 50u);
    Table falling = table_with(0, 100, 10);   // v = 100 - 90 * (G - 1): G = 0 gives 190
    EXPECT_EQ(ISP_GainLevelInterp(falling.data(), 0, 0), 190u);
    EXPECT_EQ(ISP_GainLevelInterp(rising.data(), -3, 0), 0u); // 100 - 200 < 0
}

// ---- the noise-reduction record update ------------------------------------------------------------

namespace {

// 24 synthetic tables, each with its own values, so every field's source is visible.
struct SyntheticNrTables {
    std::array<Table, 24> t;
    IspNrTables record;
    SyntheticNrTables()
    {
        for (int f = 0; f < 24; ++f)
            for (int i = 0; i < ISP_LEVEL_COUNT; ++i)
                t[f][i] = uint8_t(f * 10 + i * 3 + 1);
        const uint8_t **fields = reinterpret_cast<const uint8_t **>(&record);
        static_assert(sizeof(IspNrTables) == 24 * sizeof(const uint8_t *), "24 table pointers");
        for (int f = 0; f < 24; ++f)
            fields[f] = t[f].data();
    }
    // Field index in IspNrTables order.
    enum { SBS0, SBS1, SBS2, SBS3, SDS0, SDS1, SDS2, SDS3, STH0, STH1, STH2, STH3, MDP, Pro3, MATH1, MATH2,
           MDDZ1, MDDZ2, TFS1, TFS2, SFC, TFC, TPC, TRC };
    int at(int field, int G, int L) const { return int(integer_formula(t[field][L], t[field][L + 1], G, L)); }
};

const IspNrCaller kDay = {"ISP_SetParamDayRefresh", 795, 836};

VPSS_GRP_NRS_PARAM_S read_nrs()
{
    VPSS_GRP_NRS_PARAM_S r;
    sim_mpp_read(SIM_REC_VPSS_NRS_PARAM, &r);
    return r;
}

// Puts recognisable values into the platform's record, as the user's strengths would be.
VPSS_GRP_NRS_PARAM_S seed_nrs()
{
    VPSS_GRP_NRS_PARAM_S r = read_nrs();
    r.stNRSParam_V2.IES0 = 0x5A;
    r.stNRSParam_V2.SBS3 = 201;
    r.stNRSParam_V2.SDS3 = 202;
    r.stNRSParam_V2.MATH1 = 1203;
    r.stNRSParam_V2.MATH2 = 1204;
    r.stNRSParam_V2.LNTH = 0x77;
    sim_mpp_write(SIM_REC_VPSS_NRS_PARAM, &r);
    return r;
}

void expect_always_fields(const SyntheticNrTables &s, const NRS_PARAM_V2_S &p, int G, int L)
{
    using S = SyntheticNrTables;
    EXPECT_EQ(p.SBS0, s.at(S::SBS0, G, L));
    EXPECT_EQ(p.SBS1, s.at(S::SBS1, G, L));
    EXPECT_EQ(p.SBS2, s.at(S::SBS2, G, L));
    EXPECT_EQ(p.SDS0, s.at(S::SDS0, G, L));
    EXPECT_EQ(p.SDS1, s.at(S::SDS1, G, L));
    EXPECT_EQ(p.SDS2, s.at(S::SDS2, G, L));
    EXPECT_EQ(p.STH0, s.at(S::STH0, G, L));
    EXPECT_EQ(p.STH1, s.at(S::STH1, G, L));
    EXPECT_EQ(p.STH2, s.at(S::STH2, G, L));
    EXPECT_EQ(p.STH3, s.at(S::STH3, G, L));
    EXPECT_EQ(p.MDP, s.at(S::MDP, G, L));
    EXPECT_EQ(p.Pro3, s.at(S::Pro3, G, L));
    EXPECT_EQ(p.MDDZ1, s.at(S::MDDZ1, G, L));
    EXPECT_EQ(p.MDDZ2, s.at(S::MDDZ2, G, L));
    EXPECT_EQ(p.TFS1, s.at(S::TFS1, G, L));
    EXPECT_EQ(p.TFS2, s.at(S::TFS2, G, L));
    EXPECT_EQ(p.SFC, s.at(S::SFC, G, L));
    EXPECT_EQ(p.TFC, s.at(S::TFC, G, L));
    EXPECT_EQ(p.TPC, s.at(S::TPC, G, L));
    EXPECT_EQ(p.TRC, s.at(S::TRC, G, L));
}

} // namespace

TEST(NrRecordUpdate, GainOneTakesEntryZeroOfEveryTable)
{
    SyntheticNrTables s;
    seed_nrs(); // values unlike any table's entry 0, so that every store shows
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 0, 1, 0, &kDay), 0);
    NRS_PARAM_V2_S p = read_nrs().stNRSParam_V2;
    // All 24 fields, in IspNrTables order (mode 0: the two user-ownable pairs too).
    const int got[24] = {p.SBS0,  p.SBS1,  p.SBS2, p.SBS3, p.SDS0, p.SDS1, p.SDS2,  p.SDS3,
                         p.STH0,  p.STH1,  p.STH2, p.STH3, p.MDP,  p.Pro3, p.MATH1, p.MATH2,
                         p.MDDZ1, p.MDDZ2, p.TFS1, p.TFS2, p.SFC,  p.TFC,  p.TPC,   p.TRC};
    for (int f = 0; f < 24; ++f)
        EXPECT_EQ(got[f], s.t[f][0]) << "field " << f;
}

TEST(NrRecordUpdate, Gain62Level5EveryFieldIsT5PlusFloor30Of32)
{
    SyntheticNrTables s;
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 0, 62, 5, &kDay), 0);
    NRS_PARAM_V2_S p = read_nrs().stNRSParam_V2;
    expect_always_fields(s, p, 62, 5);
    for (int f : {int(SyntheticNrTables::SBS0), int(SyntheticNrTables::TRC)}) {
        int T5 = s.t[f][5], T6 = s.t[f][6];
        int want = T5 + int(std::floor((T6 - T5) * 30 / 32.0));
        EXPECT_EQ(s.at(f, 62, 5), want);
    }
    EXPECT_EQ(p.SBS3, s.at(SyntheticNrTables::SBS3, 62, 5));
    EXPECT_EQ(p.SDS3, s.at(SyntheticNrTables::SDS3, 62, 5));
    EXPECT_EQ(p.MATH1, s.at(SyntheticNrTables::MATH1, 62, 5));
    EXPECT_EQ(p.MATH2, s.at(SyntheticNrTables::MATH2, 62, 5));
}

TEST(NrRecordUpdate, Mode0InterpolatesBothPairs)
{
    SyntheticNrTables s;
    seed_nrs();
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 0, 24, 4, &kDay), 0);
    NRS_PARAM_V2_S p = read_nrs().stNRSParam_V2;
    EXPECT_EQ(p.SBS3, s.at(SyntheticNrTables::SBS3, 24, 4));
    EXPECT_EQ(p.SDS3, s.at(SyntheticNrTables::SDS3, 24, 4));
    EXPECT_EQ(p.MATH1, s.at(SyntheticNrTables::MATH1, 24, 4));
    EXPECT_EQ(p.MATH2, s.at(SyntheticNrTables::MATH2, 24, 4));
}

TEST(NrRecordUpdate, Mode1KeepsThe2DPairAndInterpolatesMath)
{
    SyntheticNrTables s;
    seed_nrs();
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 1, 24, 4, &kDay), 0);
    NRS_PARAM_V2_S p = read_nrs().stNRSParam_V2;
    EXPECT_EQ(p.SBS3, 201);
    EXPECT_EQ(p.SDS3, 202);
    EXPECT_EQ(p.MATH1, s.at(SyntheticNrTables::MATH1, 24, 4));
    EXPECT_EQ(p.MATH2, s.at(SyntheticNrTables::MATH2, 24, 4));
    expect_always_fields(s, p, 24, 4);
}

TEST(NrRecordUpdate, Mode2KeepsMathAndInterpolatesThe2DPair)
{
    SyntheticNrTables s;
    seed_nrs();
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 2, 24, 4, &kDay), 0);
    NRS_PARAM_V2_S p = read_nrs().stNRSParam_V2;
    EXPECT_EQ(p.SBS3, s.at(SyntheticNrTables::SBS3, 24, 4));
    EXPECT_EQ(p.SDS3, s.at(SyntheticNrTables::SDS3, 24, 4));
    EXPECT_EQ(p.MATH1, 1203);
    EXPECT_EQ(p.MATH2, 1204);
    expect_always_fields(s, p, 24, 4);
}

TEST(NrRecordUpdate, Mode3AndAboveChangeNeitherPair)
{
    for (int mode : {3, 4, 255}) {
        SyntheticNrTables s;
        seed_nrs();
        ASSERT_EQ(ISP_UpdateNrRecord(&s.record, mode, 24, 4, &kDay), 0);
        NRS_PARAM_V2_S p = read_nrs().stNRSParam_V2;
        EXPECT_EQ(p.SBS3, 201) << mode;
        EXPECT_EQ(p.SDS3, 202) << mode;
        EXPECT_EQ(p.MATH1, 1203) << mode;
        EXPECT_EQ(p.MATH2, 1204) << mode;
        expect_always_fields(s, p, 24, 4);
    }
}

TEST(NrRecordUpdate, FirstByteOfTheBlockReadsBackZeroAfterEveryUpdate)
{
    SyntheticNrTables s;
    for (int G : {1, 3, 24, 62}) {
        seed_nrs();
        int L = int(std::trunc(std::log10(double(G)) / 0.3010299956639812));
        ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 0, G, L, &kDay), 0);
        EXPECT_EQ(read_nrs().stNRSParam_V2.IES0, 0) << G;
        EXPECT_EQ(read_nrs().enNRVer, VPSS_NR_V2);
    }
}

TEST(NrRecordUpdate, LeavesByte18AndBytesAfter31AsRead)
{
    SyntheticNrTables s;
    VPSS_GRP_NRS_PARAM_S before = seed_nrs();
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 0, 24, 4, &kDay), 0);
    VPSS_GRP_NRS_PARAM_S after = read_nrs();
    EXPECT_EQ(after.stNRSParam_V2.LNTH, 0x77);
    const unsigned char *b = reinterpret_cast<const unsigned char *>(&before);
    const unsigned char *a = reinterpret_cast<const unsigned char *>(&after);
    EXPECT_EQ(std::memcmp(b + 32, a + 32, sizeof before - 32), 0);
}

TEST(NrRecordUpdate, CallsGetThenSetOnGroup0WithVersion2)
{
    SyntheticNrTables s;
    sim_mpp_reset();
    ASSERT_EQ(ISP_UpdateNrRecord(&s.record, 0, 24, 4, &kDay), 0);
    ASSERT_EQ(sim_mpp_log_count(), 2u);
    EXPECT_STREQ(sim_mpp_log_at(0)->function, "HI_MPI_VPSS_GetGrpNRSParam");
    EXPECT_EQ(sim_mpp_log_at(0)->dev, 0);
    EXPECT_STREQ(sim_mpp_log_at(1)->function, "HI_MPI_VPSS_SetGrpNRSParam");
    EXPECT_EQ(sim_mpp_log_at(1)->dev, 0);
    VPSS_GRP_NRS_PARAM_S written;
    ASSERT_EQ(sim_mpp_log_at(1)->size, sizeof written);
    std::memcpy(&written, sim_mpp_log_at(1)->record, sizeof written);
    EXPECT_EQ(written.enNRVer, VPSS_NR_V2);
}

TEST(NrRecordUpdate, FailingGetPrintsCallersMessageAndWritesNothing)
{
    sim_mpp_reset(); // the fault is armed on the 1st call counted from here
    SyntheticNrTables s;
    VPSS_GRP_NRS_PARAM_S before = read_nrs();
    sim_mpp_fail("HI_MPI_VPSS_GetGrpNRSParam", 1, 1, HI_ERR_VPSS_NOTREADY);
    testing::internal::CaptureStdout();
    EXPECT_EQ(ISP_UpdateNrRecord(&s.record, 0, 24, 4, &kDay), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "HI_MPI_VPSS_GetGrpNRSParam ISP_SetParamDayRefresh 795 failed 0xa0078010 !!!\n");
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam"), 0u);
    VPSS_GRP_NRS_PARAM_S after = read_nrs();
    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
}

TEST(NrRecordUpdate, FailingSetPrintsCallersMessage)
{
    sim_mpp_reset(); // the fault is armed on the 1st call counted from here
    SyntheticNrTables s;
    const IspNrCaller night = {"ISP_SetParamNightRefresh", 1000, 1040};
    sim_mpp_fail("HI_MPI_VPSS_SetGrpNRSParam", 1, 1, HI_ERR_VPSS_BUSY);
    testing::internal::CaptureStdout();
    EXPECT_EQ(ISP_UpdateNrRecord(&s.record, 0, 24, 4, &night), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "HI_MPI_VPSS_SetGrpNRSParam ISP_SetParamNightRefresh 1040 failed 0xa0078012 !!!\n");
}

// The same through the two refreshes that run the update (Parts 3.2 and 3.3): before each refresh the
// platform's first block byte is made non-zero again, and after it the record reads back 0 there.
TEST(NrRecordUpdate, FirstByteOfTheBlockReadsBackZeroAfterEveryDayAndNightRefresh)
{
    sim_mpp_reset();
    sim_host_reset();
    for (int32_t (*refresh)(int32_t, int32_t) : {ISP_SetParamDayRefresh, ISP_SetParamNightRefresh})
        for (int G : {1, 3, 24, 33, 55, 62}) {
            VPSS_GRP_NRS_PARAM_S seeded = seed_nrs();
            ASSERT_NE(seeded.stNRSParam_V2.IES0, 0);
            const int32_t L = int32_t(std::trunc(std::log10(double(G)) / 0.3010299956639812));
            StdoutCapture quiet; // the black-level step prints
            ASSERT_EQ(refresh(G, L), 0) << G;
            EXPECT_EQ(read_nrs().stNRSParam_V2.IES0, 0) << G;
            EXPECT_EQ(read_nrs().enNRVer, VPSS_NR_V2) << G;
        }
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam"), 12u);
}
