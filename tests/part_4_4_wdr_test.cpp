// Part 4.4: WDR and strong-light inhibition (QV_ISP_SetWDRAttr, QV_ISP_SetSLInhibitionAttr).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "call_test_support.h"

extern "C" {
#include "attributes/attributes.h"
#include "isptune.h"
#include "isptune_mpp.h"
}

namespace {

const Calls kDrcReadWrite = {"HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_SetDRCAttr"};
const Calls kSlPlain = {"HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetDRCAttr",
                        "HI_MPI_ISP_SetExposureAttr"};
const Calls kSlNotPlain = {"HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"};

class Wdr : public SimClockTest {
protected:
    void SetUp() override
    {
        SimClockTest::SetUp();
        // The load-time state of Part 4.4's module state, for runs of several tests in one process.
        std::memset(&stSLDRCAttr, 0, sizeof stSLDRCAttr);
        bSLDRCSaved = 0;
        ispParamReflashMark = 0;
    }
};

Outcome set_wdr(uint8_t mode, uint8_t level)
{
    IspWdrCfg cfg = {mode, level};
    return captured([&] { return QV_ISP_SetWDRAttr(&cfg); });
}

Outcome set_sl(uint8_t enable, uint8_t level, uint8_t drc_strength)
{
    IspSlInhibitionCfg cfg = {enable, level, drc_strength};
    return captured([&] { return QV_ISP_SetSLInhibitionAttr(&cfg); });
}

ISP_DRC_ATTR_S power_on_drc() { return power_on_record<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR); }
ISP_EXPOSURE_ATTR_S power_on_exposure() { return power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR); }
ISP_DRC_ATTR_S platform_drc() { return platform_record<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR); }
ISP_EXPOSURE_ATTR_S platform_exposure() { return platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR); }

// The four lines of steps 4, 5, 9 and 11, typed from the spec.
std::string sl_output(const ISP_EXPOSURE_ATTR_S &read_exp, const ISP_DRC_ATTR_S &read_drc,
                      const ISP_DRC_ATTR_S &local_drc, const ISP_EXPOSURE_ATTR_S &written_exp)
{
    char a[256], b[256], c[256], d[256];
    std::snprintf(a, sizeof a,
                  "GetExposureAttr    enAEStrategyMode: %x u16HistRatioSlope: %x  u8MaxHistOffset: %x  "
                  "u8Compensation: %x\n",
                  unsigned(read_exp.stAuto.enAEStrategyMode), unsigned(read_exp.stAuto.u16HistRatioSlope),
                  unsigned(read_exp.stAuto.u8MaxHistOffset), unsigned(read_exp.stAuto.u8Compensation));
    std::snprintf(b, sizeof b,
                  "GetDRCAttr         stDRCAttr.u8LocalMixingBrigtht  = %d  stDRCAttr.stManual.u8Strength = %d\n",
                  int(read_drc.u8LocalMixingBrigtht), int(read_drc.stManual.u8Strength));
    std::snprintf(c, sizeof c, " SetDRC   bEnable: %d    enOpType: %d    u8Strength: %x\n", int(local_drc.bEnable),
                  int(local_drc.enOpType), unsigned(local_drc.stManual.u8Strength));
    std::snprintf(d, sizeof d,
                  "SetExposureAttr   enAEStrategyMode: %x u16HistRatioSlope: %x  u8MaxHistOffset: %x  "
                  "u8Compensation: %x\n",
                  unsigned(written_exp.stAuto.enAEStrategyMode), unsigned(written_exp.stAuto.u16HistRatioSlope),
                  unsigned(written_exp.stAuto.u8MaxHistOffset), unsigned(written_exp.stAuto.u8Compensation));
    return std::string(a) + b + c + d;
}

// The DRC record inhibition writes when on (step 8).
ISP_DRC_ATTR_S inhibition_drc(ISP_DRC_ATTR_S r, uint8_t drc_strength)
{
    r.stManual.u8Strength = HI_U8(35 + 2 * drc_strength / 3);
    r.bEnable = HI_BOOL(1);
    r.enOpType = ISP_OP_TYPE_E(1);
    r.u8LocalMixingBrigtht = 39;
    return r;
}

ISP_EXPOSURE_ATTR_S strategy(ISP_EXPOSURE_ATTR_S r, uint16_t slope, uint8_t offset, uint8_t compensation)
{
    r.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(0);
    r.stAuto.u16HistRatioSlope = slope;
    r.stAuto.u8MaxHistOffset = offset;
    r.stAuto.u8Compensation = compensation;
    return r;
}

// A power-on exposure record with lowlight strategy and distinct values, so every change shows.
ISP_EXPOSURE_ATTR_S seed_exposure()
{
    ISP_EXPOSURE_ATTR_S r = power_on_exposure();
    r.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(1);
    r.stAuto.u16HistRatioSlope = 0x91;
    r.stAuto.u8MaxHistOffset = 0x22;
    r.stAuto.u8Compensation = 0x3c;
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &r);
    return r;
}

} // namespace

// ---- load-time state ------------------------------------------------------------------------------------

// First in the file, so that it also sees the load-time state when the whole executable runs in one
// process (CTest runs every test in a process of its own).
TEST(WdrAtLoad, ExportedObjectsAreZeroAtLoad)
{
    ISP_DRC_ATTR_S zero_drc;
    ISP_EXPOSURE_ATTR_S zero_exp;
    std::memset(&zero_drc, 0, sizeof zero_drc);
    std::memset(&zero_exp, 0, sizeof zero_exp);
    EXPECT_TRUE(same_bytes(&stSLDRCAttr, &zero_drc, sizeof zero_drc));
    EXPECT_TRUE(same_bytes(&stSLExposureAttr, &zero_exp, sizeof zero_exp));
    EXPECT_EQ(s32WdrParamMark, 0);
    EXPECT_EQ(bSLDRCSaved, 0);
    EXPECT_EQ(sizeof stSLDRCAttr, 496u);
    EXPECT_EQ(sizeof stSLExposureAttr, 412u);
}

// ---- QV_ISP_SetWDRAttr -----------------------------------------------------------------------------------

namespace {
ISP_DRC_ATTR_S wdr_written(uint8_t level)
{
    sim_mpp_reset();
    Outcome o = set_wdr(0, level);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(platform_calls(), kDrcReadWrite);
    return written_record<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR);
}
} // namespace

TEST_F(Wdr, WdrLevel3InhibitionOffEnabledManualStrength100)
{
    ISP_DRC_ATTR_S expected = power_on_drc();
    expected.bEnable = HI_BOOL(1);
    expected.enOpType = ISP_OP_TYPE_E(1);
    expected.stManual.u8Strength = 100;
    ISP_DRC_ATTR_S w = wdr_written(3);
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
}

TEST_F(Wdr, WdrLevel0DisabledOperationTypeAndStrengthsAsRead)
{
    ISP_DRC_ATTR_S expected = power_on_drc();
    expected.bEnable = HI_BOOL(0);
    ISP_DRC_ATTR_S w = wdr_written(0);
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
}

// The power-on DRC is automatic, the type level 0 would write if it wrote one: a manual record with
// strengths of its own shows that level 0 changes bEnable only.
TEST_F(Wdr, WdrLevel0KeepsAManualOperationTypeAndBothStrengthsAsRead)
{
    ISP_DRC_ATTR_S seeded = power_on_drc();
    seeded.enOpType = ISP_OP_TYPE_E(1);
    seeded.stManual.u8Strength = 201;
    seeded.stAuto.u8Strength = 202;
    sim_mpp_write(SIM_REC_DRC_ATTR, &seeded);
    Outcome o = set_wdr(0, 0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(platform_calls(), kDrcReadWrite);
    ISP_DRC_ATTR_S expected = seeded;
    expected.bEnable = HI_BOOL(0);
    ISP_DRC_ATTR_S w = written_record<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR);
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
    EXPECT_EQ(raw(w.enOpType), 1u);
    EXPECT_EQ(w.stManual.u8Strength, 201);
    EXPECT_EQ(w.stAuto.u8Strength, 202);
}

TEST_F(Wdr, WdrLevel1EnabledAutomaticAutoStrength70)
{
    ISP_DRC_ATTR_S seeded = power_on_drc();
    seeded.bEnable = HI_BOOL(0);
    seeded.enOpType = ISP_OP_TYPE_E(1);
    sim_mpp_write(SIM_REC_DRC_ATTR, &seeded);
    Outcome o = set_wdr(0, 1);
    EXPECT_EQ(o.result, 0);
    ISP_DRC_ATTR_S expected = seeded;
    expected.bEnable = HI_BOOL(1);
    expected.enOpType = ISP_OP_TYPE_E(0);
    expected.stAuto.u8Strength = 70;
    ISP_DRC_ATTR_S w = logged_record<ISP_DRC_ATTR_S>(1);
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
}

TEST_F(Wdr, WdrLevels2To5ManualStrengths)
{
    const uint8_t strengths[6] = {0, 0, 54, 100, 128, 150};
    for (uint8_t level = 2; level <= 5; ++level) {
        ISP_DRC_ATTR_S expected = power_on_drc();
        expected.bEnable = HI_BOOL(1);
        expected.enOpType = ISP_OP_TYPE_E(1);
        expected.stManual.u8Strength = strengths[level];
        ISP_DRC_ATTR_S w = wdr_written(level);
        EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected)) << "level " << int(level);
    }
}

TEST_F(Wdr, WdrModeByteIsNotRead)
{
    ISP_DRC_ATTR_S a = wdr_written(4);
    sim_mpp_reset();
    ASSERT_EQ(set_wdr(9, 4).result, 0);
    ISP_DRC_ATTR_S b = logged_record<ISP_DRC_ATTR_S>(1);
    EXPECT_TRUE(same_bytes(&a, &b, sizeof a));
}

TEST_F(Wdr, WdrLevel6WrittenBackUnchangedResultZero)
{
    ISP_DRC_ATTR_S expected = power_on_drc();
    for (uint8_t level : {6, 7, 200, 255}) {
        ISP_DRC_ATTR_S w = wdr_written(level);
        EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected)) << "level " << int(level);
    }
}

TEST_F(Wdr, WdrAnyLevelWithInhibitionOnWrittenBackUnchangedResultZero)
{
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8SlInhibitionEnable, 1), 0);
    ISP_DRC_ATTR_S expected = power_on_drc();
    for (uint8_t level = 0; level <= 6; ++level) {
        ISP_DRC_ATTR_S w = wdr_written(level);
        EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected)) << "level " << int(level);
    }
}

TEST_F(Wdr, WdrSetterKeepsNoStateAndRaisesNoReflashMark)
{
    ispParamReflashMark = 0;
    wdr_written(3);
    EXPECT_EQ(ispParamReflashMark, 0);
    EXPECT_EQ(bSLDRCSaved, 0);
}

TEST_F(Wdr, WdrWithoutHostRecordLogsAndReturnsMinusOneWithoutPlatformCall)
{
    sim_host_sysinfo_null(1);
    expect_refused_without_host_record(set_wdr(0, 3));
}

TEST_F(Wdr, WdrNullGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetWDRAttr(nullptr); }),
                        "QV_ISP_SetWDRAttr: argument is NULL, nothing done\n");
}

// ---- QV_ISP_SetSLInhibitionAttr --------------------------------------------------------------------------

TEST_F(Wdr, InhibitionOnDrcStrengths0And1And2And255Give35And35And36And205)
{
    const uint8_t inputs[4] = {0, 1, 2, 255};
    const uint8_t strengths[4] = {35, 35, 36, 205};
    for (int i = 0; i < 4; ++i) {
        sim_mpp_reset();
        Outcome o = set_sl(1, 10, inputs[i]);
        EXPECT_EQ(o.result, 0);
        ASSERT_EQ(platform_calls(), kSlPlain);
        ISP_DRC_ATTR_S w = logged_record<ISP_DRC_ATTR_S>(2);
        EXPECT_EQ(w.stManual.u8Strength, strengths[i]) << "input " << int(inputs[i]);
        ISP_DRC_ATTR_S expected = inhibition_drc(power_on_drc(), inputs[i]);
        EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
        ISP_DRC_ATTR_S now = platform_drc();
        EXPECT_TRUE(same_bytes(&now, &expected, sizeof expected));
    }
}

// The library computes 2 * s / 3 without a division (src/attributes/wdr.c): every strength is checked.
TEST_F(Wdr, InhibitionOnEveryDrcStrengthGives35PlusTwoThirdsTruncated)
{
    for (int input = 0; input <= 255; ++input) {
        sim_mpp_reset();
        Outcome o = set_sl(1, 10, uint8_t(input));
        ASSERT_EQ(o.result, 0);
        ASSERT_EQ(platform_calls(), kSlPlain);
        EXPECT_EQ(logged_record<ISP_DRC_ATTR_S>(2).stManual.u8Strength, 35 + 2 * input / 3) << "input " << input;
    }
}

TEST_F(Wdr, InhibitionOnLevel200Slope200Offset200Compensation48Strategy0)
{
    ISP_EXPOSURE_ATTR_S read_exp = seed_exposure();
    Outcome o = set_sl(1, 200, 90);
    EXPECT_EQ(o.result, 0);
    ASSERT_EQ(platform_calls(), kSlPlain);
    ISP_EXPOSURE_ATTR_S expected = strategy(read_exp, 200, 200, 48);
    ISP_EXPOSURE_ATTR_S w = logged_record<ISP_EXPOSURE_ATTR_S>(3), now = platform_exposure();
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
    EXPECT_TRUE(same_bytes(&now, &expected, sizeof expected));
    ISP_DRC_ATTR_S drc = inhibition_drc(power_on_drc(), 90);
    EXPECT_EQ(o.out, sl_output(read_exp, power_on_drc(), drc, expected));
}

TEST_F(Wdr, InhibitionOnNotPlainSceneNothingChangesMarkRaisedResultZero)
{
    const struct {
        int field;
        uint8_t value;
    } not_plain[] = {{SYSINFO_u8BlcEnable, 1}, {SYSINFO_u8WdrLevel, 2}, {SYSINFO_u8ExposureMode, 1},
                     {SYSINFO_u8WdrMode, 1}};
    for (const auto &np : not_plain) {
        sim_mpp_reset();
        sim_host_reset();
        vclock_reset();
        ASSERT_EQ(sim_host_set_field(size_t(np.field), np.value), 0);
        ISP_EXPOSURE_ATTR_S read_exp = seed_exposure();
        ispParamReflashMark = 0;
        Outcome o = set_sl(1, 200, 255);
        EXPECT_EQ(o.result, 0);
        // Step 7: the DRC is not touched (no write at all); step 12 writes the exposure back as read.
        EXPECT_EQ(platform_calls(), kSlNotPlain) << "field " << np.field;
        ISP_DRC_ATTR_S drc_now = platform_drc(), drc_before = power_on_drc();
        EXPECT_TRUE(same_bytes(&drc_now, &drc_before, sizeof drc_now));
        ISP_EXPOSURE_ATTR_S w = logged_record<ISP_EXPOSURE_ATTR_S>(2);
        EXPECT_TRUE(same_bytes(&w, &read_exp, sizeof w));
        EXPECT_EQ(ispParamReflashMark, 1);
        EXPECT_EQ(o.out, sl_output(read_exp, drc_before, drc_before, read_exp));
    }
}

TEST_F(Wdr, FirstCallWithInhibitionOffSavesAndWritesBackUnchangedCompensation50Strategy0)
{
    ISP_EXPOSURE_ATTR_S read_exp = seed_exposure();
    ASSERT_EQ(bSLDRCSaved, 0);
    Outcome o = set_sl(0, 77, 77);
    EXPECT_EQ(o.result, 0);
    ASSERT_EQ(platform_calls(), kSlPlain);
    ISP_DRC_ATTR_S drc = power_on_drc();
    EXPECT_EQ(bSLDRCSaved, 1);
    EXPECT_TRUE(same_bytes(&stSLDRCAttr, &drc, sizeof drc));
    ISP_DRC_ATTR_S w = logged_record<ISP_DRC_ATTR_S>(2);
    EXPECT_TRUE(same_bytes(&w, &drc, sizeof drc));
    ISP_EXPOSURE_ATTR_S expected = strategy(read_exp, 0, 0, 50);
    ISP_EXPOSURE_ATTR_S we = logged_record<ISP_EXPOSURE_ATTR_S>(3);
    EXPECT_TRUE(same_bytes(&we, &expected, sizeof expected));
    EXPECT_EQ(o.out, sl_output(read_exp, drc, drc, expected));
}

TEST_F(Wdr, OnThenOnAgainKeepsTheSaveOffRestoresTheRecordSavedBeforeTheFirstOn)
{
    ISP_DRC_ATTR_S original = power_on_drc();
    original.stManual.u8Strength = 77;
    original.u8LocalMixingBrigtht = 41;
    sim_mpp_write(SIM_REC_DRC_ATTR, &original);

    ASSERT_EQ(set_sl(1, 100, 30).result, 0); // on: saves the original, writes its own record (39)
    EXPECT_EQ(bSLDRCSaved, 1);
    EXPECT_TRUE(same_bytes(&stSLDRCAttr, &original, sizeof original));
    ISP_DRC_ATTR_S first_on = inhibition_drc(original, 30), now = platform_drc();
    EXPECT_TRUE(same_bytes(&now, &first_on, sizeof now));

    size_t mark = sim_mpp_log_count();
    Outcome again = set_sl(1, 100, 240); // on again: its record carries 39, the save stays
    ASSERT_EQ(again.result, 0);
    EXPECT_EQ(platform_calls(mark), kSlPlain);
    EXPECT_TRUE(same_bytes(&stSLDRCAttr, &original, sizeof original));
    ISP_DRC_ATTR_S second_on = inhibition_drc(first_on, 240);
    now = platform_drc();
    EXPECT_TRUE(same_bytes(&now, &second_on, sizeof now));
    EXPECT_NE(again.out.find("stDRCAttr.u8LocalMixingBrigtht  = 39  stDRCAttr.stManual.u8Strength = 55\n"),
              std::string::npos);

    mark = sim_mpp_log_count();
    Outcome off = set_sl(0, 0, 0); // off: the record saved before the first on goes back, byte for byte
    ASSERT_EQ(off.result, 0);
    EXPECT_EQ(platform_calls(mark), kSlPlain);
    ISP_DRC_ATTR_S restored = logged_record<ISP_DRC_ATTR_S>(mark + 2);
    EXPECT_TRUE(same_bytes(&restored, &original, sizeof original));
    now = platform_drc();
    EXPECT_TRUE(same_bytes(&now, &original, sizeof original));
    // Step 9 prints the local record, that is the values read (inhibition's own record of the second on).
    EXPECT_NE(off.out.find(" SetDRC   bEnable: 1    enOpType: 1    u8Strength: c3\n"), std::string::npos);
}

TEST_F(Wdr, ARecordMarked40ReplacesAnEarlierSave)
{
    ASSERT_EQ(set_sl(0, 0, 0).result, 0); // saves the power-on record (mark 45)
    ISP_DRC_ATTR_S marked = power_on_drc();
    marked.u8LocalMixingBrigtht = 40;
    marked.stManual.u8Strength = 12;
    sim_mpp_write(SIM_REC_DRC_ATTR, &marked);
    ASSERT_EQ(set_sl(1, 0, 0).result, 0);
    EXPECT_TRUE(same_bytes(&stSLDRCAttr, &marked, sizeof marked));
    // A record with another mark (neither 40 nor a first save) does not.
    ISP_DRC_ATTR_S other = power_on_drc();
    other.u8LocalMixingBrigtht = 41;
    sim_mpp_write(SIM_REC_DRC_ATTR, &other);
    ASSERT_EQ(set_sl(1, 0, 0).result, 0);
    EXPECT_TRUE(same_bytes(&stSLDRCAttr, &marked, sizeof marked));
}

TEST_F(Wdr, InhibitionRaisesTheMarkAndSleeps50Microseconds)
{
    ispParamReflashMark = 0;
    ASSERT_EQ(set_sl(1, 1, 1).result, 0);
    EXPECT_EQ(ispParamReflashMark, 1);
    ASSERT_EQ(vclock_call_count(), 1u);
    struct vclock_call call = vclock_call_at(0);
    EXPECT_EQ(call.kind, VCLOCK_USLEEP);
    EXPECT_EQ(call.duration_us, 50u);
}

TEST_F(Wdr, InhibitionWithoutHostRecordLogsAndReturnsMinusOneWithoutPlatformCall)
{
    sim_host_sysinfo_null(1);
    ispParamReflashMark = 0;
    Outcome o = set_sl(1, 1, 1);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "");
    EXPECT_TRUE(platform_calls().empty());
    EXPECT_EQ(ispParamReflashMark, 0);
    EXPECT_EQ(bSLDRCSaved, 0);
    expect_only_syslog_entry("GetSysInfo failed\n");
}

TEST_F(Wdr, InhibitionNullGroupIsRefused)
{
    ispParamReflashMark = 0;
    expect_null_refused(captured([] { return QV_ISP_SetSLInhibitionAttr(nullptr); }),
                        "QV_ISP_SetSLInhibitionAttr: argument is NULL, nothing done\n");
    EXPECT_EQ(ispParamReflashMark, 0);
}

// ---- the exported data objects ---------------------------------------------------------------------------

TEST_F(Wdr, LibraryNeverTouchesStSLExposureAttrOrS32WdrParamMark)
{
    std::memset(&stSLExposureAttr, 0x5C, sizeof stSLExposureAttr);
    s32WdrParamMark = 1234;
    ISP_EXPOSURE_ATTR_S before = stSLExposureAttr;
    set_sl(1, 9, 9);
    set_sl(0, 9, 9);
    set_wdr(0, 3);
    EXPECT_TRUE(same_bytes(&stSLExposureAttr, &before, sizeof before));
    EXPECT_EQ(s32WdrParamMark, 1234);
}
