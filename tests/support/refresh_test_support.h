// Test support for Parts 3.2 to 3.4: running the day and night refreshes, and the records they write.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <tuple>

#include "call_test_support.h"

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
}

// One of the two refreshes, with the tables it interpolates and the curves it loads.
struct RefreshKind {
    const char *name; // as in its messages
    int32_t (*refresh)(int32_t G, int32_t L);
    const IspNrTables *nr_tables;
    const uint8_t *drc_table, *defog_table;
    int32_t high_gain_from; // the first G of the high-gain gamma curve
    const uint32_t *curve, *high_gain_curve;
    int32_t (*profile)(void); // the profile application that loads `curve` (Parts 2.3, 2.4)
    int refreshes; // run so far in this process (its gamma mark is -1 only before the first)
};
extern RefreshKind g_day_refresh;   // Part 3.2
extern RefreshKind g_night_refresh; // Part 3.3

// Gain level of Part 1.3 step 3, typed from the spec.
int32_t level_of(int32_t G);

// One refresh at (G, L), or at G with its gain level, with standard output captured.
Outcome run_refresh(RefreshKind &kind, int32_t G, int32_t L);
Outcome run_refresh(RefreshKind &kind, int32_t G);

// CTest runs every test in a fresh process, where the gamma marks are -1. So that a test that needs the
// gamma step also holds when the whole file runs in one process, this refreshes once in the other band
// and returns the platform and the host to power-on.
void load_other_curve(RefreshKind &kind, int32_t G);

// A host field and the value to set it to.
struct HostField {
    SysInfoField field;
    uint8_t value;
};
// load_other_curve at G, then the refresh at G with the host fields `fields` set first.
Outcome refresh_with(RefreshKind &kind, int32_t G, std::initializer_list<HostField> fields);

// What the black-level step prints (Part 3.2 step 6, Part 3.3 step 7), typed from the spec.
std::string black_level_lines(int32_t G, int table_value);

// The 24 interpolated fields of the noise-reduction record, in record order.
struct Nr {
    int SBS0, SBS1, SBS2, SBS3, SDS0, SDS1, SDS2, SDS3, STH0, STH1, STH2, STH3, MDP, Pro3, MATH1, MATH2,
        MDDZ1, MDDZ2, TFS1, TFS2, SFC, TFC, TPC, TRC;
};

// A full refresh worked out by hand.
struct RefreshCase {
    int32_t G, L;
    Nr nr;
    int drc, defog;
    int black;      // the black level loaded, or 0 for "as read"
    bool high_gain; // the high-gain curve, else the profile's curve
};
void PrintTo(const RefreshCase &c, std::ostream *os);
// "G<G>_BlcOn" or "G<G>_BlcOff": the name of a (case, u8BlcEnable) instance.
std::string refresh_case_name(const ::testing::TestParamInfo<std::tuple<RefreshCase, bool>> &pi);

// ---- the expected records: the power-on record with the members the refresh writes --------------------

// The power-on record after a refresh under noise-reduction mode `mode` with the values `v`.
VPSS_GRP_NRS_PARAM_S expected_nrs(const Nr &v, int mode = 0);
ISP_DRC_ATTR_S expected_drc(int strength);
ISP_DEFOG_ATTR_S expected_defog(int strength);
// 0: the levels as read (power-on).
ISP_BLACK_LEVEL_S expected_black(int level);
ISP_GAMMA_ATTR_S expected_gamma(const uint32_t curve[257]);
// The seeded exposure record with the strategy row (mode, slope, offset) applied.
ISP_EXPOSURE_ATTR_S expected_exposure(int mode, int slope, int offset);

// Distinct values in the fields the backlight step writes, so that its write shows.
void seed_exposure();
// A manual defog record of strength `strength` in the platform (what a user set); returns it.
ISP_DEFOG_ATTR_S seed_manual_defog(uint8_t strength);

// ---- checks shared by both refreshes -------------------------------------------------------------------

// A run that succeeded: result 0, exactly `calls` (all on device 0, all succeeding), `out` printed, nothing
// logged to the host.
void expect_clean_run(const Outcome &run, const Calls &calls, const std::string &out);
// The noise-reduction, DRC, defog, black-level and gamma records the refresh wrote for `c`.
void expect_case_records(const RefreshKind &kind, const RefreshCase &c);
// The noise-reduction record at G with the values `values`, under every u8DnrMode in turn (step 2).
void expect_dnr_mode_read_at_every_entry(RefreshKind &kind, int32_t G, const Nr &values);
// No settings record: the message and -1, with no platform call.
void expect_no_settings_record_refused(RefreshKind &kind);
// A gain level outside 0..10 is refused with its message and no platform call.
void expect_levels_outside_0_to_10_refused(RefreshKind &kind);
// Every G from 1 to 62 against an independent integer computation over the library's tables.
void expect_every_gain_from_1_to_62_matches_the_integer_formula(RefreshKind &kind);
// Crossing the gamma band boundary (high_gain_from - 1 to high_gain_from) either way loads the other curve.
void expect_band_crossings_load_the_other_curve(RefreshKind &kind);
// With the refresh's mark at high gain (a refresh at G1) and the profile's curve put in place, a refresh at
// G2 in the same band loads no curve; down a band and up again the high-gain curve returns.
void expect_only_its_own_mark_compared(RefreshKind &kind, int32_t G1, int32_t G2);
// The mark is set before the set call, so a failed gamma set is not retried until the band changes.
void expect_failed_gamma_set_not_retried_in_the_band(RefreshKind &kind);
// The same with the real profile application loading the profile's curve while the mark is 1: no refresh
// anywhere in the high-gain band loads a curve; one below it reloads the profile's curve, and the next in
// the band the high-gain curve.
void expect_profile_curve_stays_until_the_gain_leaves_the_band(RefreshKind &kind);
// The day noise-reduction tables' entry 0 in every field (Part 3.4, at G = 1 under u8DnrMode 0).
void expect_day_level0_values(const NRS_PARAM_V2_S &p);

// ---- the backlight-compensation strategy table, rows 0 to 3 --------------------------------------------

struct StrategyRow {
    int level;
    int mode, slope, offset; // expected; level 3 and above: the seeded 0, 1000, 7 unchanged
};
extern const StrategyRow kStrategyRows[5];
void PrintTo(const StrategyRow &row, std::ostream *os);
std::string strategy_row_name(const ::testing::TestParamInfo<StrategyRow> &pi);

extern const Calls kGammaCalls;
extern const Calls kDrcCalls;
extern const Calls kExposureCalls;
