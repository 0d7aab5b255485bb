// Test support for Parts 2.3 and 2.4: the profiles' flags, whole-platform snapshots and the checks both
// profiles share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "call_test_support.h"
#include "core_access.h"

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
}

using Bytes = std::vector<unsigned char>;

// ProfileMode (core_access.h).
inline int32_t profile_mode()
{
    return test_profile_mode();
}

// Simulators at power-on, ProfileMode at `StartMode` (the opposite of what the profile under test stores,
// so that its stores show) and the refresh request lowered.
template <int32_t StartMode> class ProfileTest : public SimTest {
protected:
    void SetUp() override
    {
        SimTest::SetUp();
        test_set_profile_mode(StartMode);
        set_reflash_mark(0);
    }
};

// The profiles, with standard output captured.
Outcome run_day_profile();
Outcome run_night_profile();

// Entries 0..11 of a 16-entry automatic array from a 12-entry table (widened or truncated to the field).
template <typename F, size_t N, typename T> void put12(F (&field)[N], const T *table)
{
    static_assert(N == 16, "the platform's automatic arrays have 16 entries");
    for (size_t i = 0; i < 12; ++i)
        field[i] = F(table[i]);
}

// ---- the records the profiles write: a record with the members both profiles set from their tables ------

// The per-level tables a profile writes into the automatic arrays (Part 2.1 for the day, 2.2 for the night).
struct ProfileTables {
    const uint32_t *gamma;
    const uint16_t *sharpen_ud;
    const uint8_t *sharpen_d, *texture_thr, *sharpen_edge, *edge_thr, *over_shoot, *under_shoot, *shoot_sup_str,
        *detail_ctrl;
    const uint16_t *edge_smooth_thr, *edge_smooth_slope, *anti_alias_thr, *anti_alias_slope, *nr_coarse_str;
    const uint8_t *detail_enhance_str;
    const uint16_t *noise_suppress_str, *sharpen_luma_str;
    const uint16_t *dp_strength, *dp_blend_ratio;
};
extern const ProfileTables kDayTables;   // gColor*, g_gamma_table_day
extern const ProfileTables kNightTables; // gNight*, g_gamma_table_night

// The gain ceilings both profiles write (AGain 0x3E00, DGain 0x400, ISPDGain 0x1000, system gain 0x40000,
// threshold 0x4000).
ISP_EXPOSURE_ATTR_S with_gain_ceilings(ISP_EXPOSURE_ATTR_S r);
// The profile's curve, user-defined and enabled.
ISP_GAMMA_ATTR_S with_gamma(ISP_GAMMA_ATTR_S r, const ProfileTables &t);
// The nine sharpen arrays, automatic and enabled.
ISP_SHARPEN_ATTR_S with_sharpen(ISP_SHARPEN_ATTR_S r, const ProfileTables &t);
// The eight demosaic arrays.
ISP_DEMOSAIC_ATTR_S with_demosaic(ISP_DEMOSAIC_ATTR_S r, const ProfileTables &t);
// The two defect-pixel arrays, automatic and enabled.
ISP_DP_DYNAMIC_ATTR_S with_dp_dynamic(ISP_DP_DYNAMIC_ATTR_S r, const ProfileTables &t);

// ---- whole-platform snapshots: every record of the simulated platform, by sim_mpp_record_id --------------

// The platform's record `id` now.
Bytes record_bytes(sim_mpp_record_id id);
std::vector<Bytes> power_on_state();
std::vector<Bytes> platform_state();

template <typename T> void put(std::vector<Bytes> &state, sim_mpp_record_id id, const T &record)
{
    ASSERT_EQ(state[size_t(id)].size(), sizeof(T)) << sim_mpp_record_name(id);
    std::memcpy(state[size_t(id)].data(), &record, sizeof(T));
}

template <typename T> T get(const std::vector<Bytes> &state, sim_mpp_record_id id)
{
    T record;
    EXPECT_EQ(state[size_t(id)].size(), sizeof(T)) << sim_mpp_record_name(id);
    std::memcpy(&record, state[size_t(id)].data(), sizeof(T));
    return record;
}

// Record `id` of `state`, changed as `change` changes a record.
template <typename T> void apply(std::vector<Bytes> &state, sim_mpp_record_id id, T (*change)(T))
{
    put(state, id, change(get<T>(state, id)));
}

// Every record of the platform equals `want`, byte for byte.
void expect_state(const std::vector<Bytes> &want);

// Every record filled with pseudo-random bytes (a fixed LCG), written into the platform: any member the
// profile writes without naming it then shows, whatever its power-on value happens to be.
std::vector<Bytes> random_platform(uint32_t seed);

// The record a profile's set call writes (a failure for any other call).
sim_mpp_record_id record_of(const std::string &set_call);

// ---- checks both profiles share ------------------------------------------------------------------------

// No settings record: the message and -1 with no platform call, and the mode and the request stored.
void expect_refused_without_record(const Outcome &o, int32_t wanted_mode);
// Success: 0, nothing printed, nothing logged to the host.
void expect_silent_success(const Outcome &o);
// The last call of each of `set_calls` wrote its record of `want`, byte for byte.
void expect_set_calls_wrote(const std::vector<Bytes> &want, const std::vector<const char *> &set_calls);
// `count` calls were made, every one on device (or group) 0 and succeeding.
void expect_calls_on_device_zero(size_t count);
// At the host's default u8Sharpness 128, `profile` makes `calls` and writes `want` (its sharpen tables,
// automatic and enabled).
void expect_sharpen_tables_at_128(Outcome (*profile)(), const Calls &calls, const ISP_SHARPEN_ATTR_S &want);
// `profile` run twice leaves the platform as run once.
void expect_second_run_changes_nothing(Outcome (*profile)());
// A profile's expected platform (its test's expected_state): the steps up to `last_step` applied to `start`.
using ExpectedState = std::vector<Bytes> (*)(int sharpness, int last_step, const std::vector<Bytes> &start);
// From random records, at u8Sharpness 128 and 127, `profile` changes only the members it names.
void expect_only_named_members_change(Outcome (*profile)(), ExpectedState expected);
// With every byte of the settings record `fill` but u8Sharpness 128, `profile` makes `calls` and reaches
// the state at 128: only u8Sharpness is read.
void expect_only_sharpness_read(Outcome (*profile)(), ExpectedState expected, unsigned char fill,
                                const Calls &calls);
// The profile (loading `profile_curve`) between two refreshes in the high-gain band (`refresh` at G1,
// then at G2) leaves the refresh's gamma mark alone: the second refresh loads no curve.
void expect_refresh_gamma_mark_untouched(Outcome (*profile)(), int32_t (*refresh)(int32_t, int32_t), int32_t G1,
                                         int32_t G2, const ISP_GAMMA_ATTR_S &profile_curve);
