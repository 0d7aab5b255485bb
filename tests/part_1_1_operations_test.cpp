// Part 1.1: the operation table (CreateIspDev, the sixteen operations, the cached IspConfig).
//
// CTest runs every test case in a process of its own, so each starts with the cache as the library is
// loaded (all zero); the two tests that depend on that come first, so that running the whole executable
// at once works too.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "call_test_support.h"
#include "core_access.h"
#include "sysinfo_access.h"

extern "C" {
#include "core/core.h"
#include "isptune.h"
}

// Module state the setters keep (Parts 4.4 and 2.3), reset between runs so that two runs compare.
extern "C" int32_t bSLDRCSaved;
extern "C" ISP_DRC_ATTR_S stSLDRCAttr;

namespace {

// One set operation and the direct call of its setter that it must amount to.
struct SetOperation {
    const char *name;
    size_t slot;
    IspOperation operation;
    std::function<int32_t(const IspConfig &)> direct;
};

const std::vector<SetOperation> &set_operations()
{
    static const std::vector<SetOperation> ops = {
        {"set_exposure", 2, set_exposure,
         [](const IspConfig &c) { IspExposureCfg g = c.stExposure; return QV_ISP_SetExposureAttr(&g); }},
        {"set_awb", 3, set_awb, [](const IspConfig &c) { IspWbCfg g = c.stWb; return QV_ISP_SetWBAttr(&g); }},
        {"set_wdr", 4, set_wdr, [](const IspConfig &c) { IspWdrCfg g = c.stWdr; return QV_ISP_SetWDRAttr(&g); }},
        {"set_blc", 5, set_blc, [](const IspConfig &c) { IspBlcCfg g = c.stBlc; return QV_ISP_SetBLCAttr(&g); }},
        {"set_flcker", 6, set_flcker,
         [](const IspConfig &c) { IspFlickerCfg g = c.stFlicker; return QV_ISP_SetFlickerAttr(&g); }},
        {"set_dnr", 7, set_dnr, [](const IspConfig &c) { IspDnrCfg g = c.stDnr; return QV_ISP_SetDNRAttr(&g); }},
        {"set_iris", 8, set_iris, [](const IspConfig &c) { IspIrisCfg g = c.stIris; return QV_ISP_SetIRAttr(&g); }},
        {"set_defog", 9, set_defog,
         [](const IspConfig &c) { IspDefogCfg g = c.stDefog; return QV_ISP_SetDefogAttr(&g); }},
        {"set_sharpness", 10, set_sharpness, [](const IspConfig &c) { return QV_ISP_SetSharpnessAttr(c.f32Sharpness); }},
        {"set_brightness", 11, set_brightness, [](const IspConfig &c) { return QV_ISP_SetBrightAttr(c.u32Brightness); }},
        {"set_Contrast", 12, set_Contrast, [](const IspConfig &c) { return QV_ISP_SetContrastAttr(c.u32Contrast); }},
        {"set_Saturation", 13, set_Saturation,
         [](const IspConfig &c) { return QV_ISP_SetSaturationAttr(c.u32Saturation); }},
        {"set_SLInhibition", 14, set_SLInhibition,
         [](const IspConfig &c) {
             IspSlInhibitionCfg g = c.stSlInhibition;
             return QV_ISP_SetSLInhibitionAttr(&g);
         }},
    };
    return ops;
}

// A host record in which every setter has work to do: manual exposure, manual white balance, WDR level 2,
// backlight on, noise reduction mode 3, manual defog, distinctive picture values, strong-light on.
void host_preset()
{
    sim_host_reset();
    const std::pair<SysInfoField, uint8_t> fields[] = {
        {SYSINFO_u8Brightness, 200},     {SYSINFO_u8Contrast, 60},        {SYSINFO_u8Saturation, 90},
        {SYSINFO_u8Sharpness, 64},       {SYSINFO_u8ManualGain, 3},       {SYSINFO_u8WbMode, 5},
        {SYSINFO_u8WbRed, 11},           {SYSINFO_u8WbGreen, 22},         {SYSINFO_u8WbBlue, 33},
        {SYSINFO_u8BlcEnable, 1},        {SYSINFO_u8BlcLevel, 2},         {SYSINFO_u8FlickerMode, 0},
        {SYSINFO_u8Shutter, 4},          {SYSINFO_u8ExposureMode, 1},     {SYSINFO_u8WdrMode, 1},
        {SYSINFO_u8WdrLevel, 2},         {SYSINFO_u8DnrMode, 3},          {SYSINFO_u8Dnr2dStrength, 30},
        {SYSINFO_u8Dnr3dStrength, 40},   {SYSINFO_u8DefogMode, 1},        {SYSINFO_u8DefogReserved, 9},
        {SYSINFO_u8DefogStrength, 150},  {SYSINFO_u8SlInhibitionEnable, 1}, {SYSINFO_u8SlInhibitionLevel, 7},
        {SYSINFO_u8SlDrcStrength, 120},
    };
    for (const auto &f : fields)
        sim_host_set_field(f.first, f.second);
}

// The library-wide state a setter can leave behind, back to its load-time values.
void reset_library_state()
{
    test_set_profile_mode(0);
    set_reflash_mark(0);
    bSLDRCSaved = 0;
    std::memset(&stSLDRCAttr, 0, sizeof stSLDRCAttr);
}

// Everything a call does that the outside can see.
struct Effects {
    int32_t result = 0;
    std::string out;
    std::vector<std::string> calls;
    std::vector<std::vector<unsigned char>> records;
    std::vector<int> codes;
    std::vector<unsigned char> sysinfo;
    std::vector<std::string> host_log;
    int32_t reflash = 0;
};

// Runs `call` from the platform's power-on state with the host record as it is now.
Effects run(const std::function<int32_t()> &call)
{
    sim_mpp_reset();
    std::vector<unsigned char> host(sim_host_sysinfo(), sim_host_sysinfo() + SIM_HOST_SYSINFO_SIZE);
    reset_library_state();
    const size_t host_log_first = sim_host_log_count();
    Effects e;
    {
        StdoutCapture capture;
        e.result = call();
        e.out = capture.take();
    }
    for (size_t i = 0; i < sim_mpp_log_count(); ++i) {
        const sim_mpp_call *c = sim_mpp_log_at(i);
        e.calls.emplace_back(c->function);
        const unsigned char *bytes = static_cast<const unsigned char *>(c->record);
        e.records.emplace_back(bytes, bytes + c->size);
        e.codes.push_back(c->result);
    }
    e.sysinfo.assign(sim_host_sysinfo(), sim_host_sysinfo() + SIM_HOST_SYSINFO_SIZE);
    const std::vector<std::string> texts = host_log_texts();
    e.host_log.assign(texts.begin() + long(std::min(host_log_first, texts.size())), texts.end());
    e.reflash = reflash_mark();
    // Put the host record back, so that the next run starts from the same one.
    std::memcpy(sim_host_sysinfo(), host.data(), host.size());
    return e;
}

// The operation must do exactly what its setter does on `config`, and yield 0 whatever the setter gave.
void expect_same_effects(const SetOperation &op, const IspConfig &config)
{
    Effects via_op = run([&] { return op.operation(); });
    Effects direct = run([&] { return op.direct(config); });
    EXPECT_EQ(via_op.result, 0) << op.name;
    EXPECT_EQ(via_op.out, direct.out) << op.name;
    EXPECT_EQ(via_op.calls, direct.calls) << op.name;
    EXPECT_EQ(via_op.records, direct.records) << op.name;
    EXPECT_EQ(via_op.codes, direct.codes) << op.name;
    EXPECT_EQ(via_op.sysinfo, direct.sysinfo) << op.name;
    EXPECT_EQ(via_op.host_log, direct.host_log) << op.name;
    EXPECT_EQ(via_op.reflash, direct.reflash) << op.name;
}

IspConfig cached()
{
    IspConfig c;
    std::memset(&c, 0xA5, sizeof c);
    isp_cached_config(&c);
    return c;
}

IspConfig zero_config()
{
    IspConfig c;
    std::memset(&c, 0, sizeof c);
    return c;
}

IspConfig snapshot_of_host()
{
    IspConfig c;
    StdoutCapture capture;
    QV_ISP_GetConfig(&c);
    return c;
}

int32_t quiet_get_config()
{
    StdoutCapture capture;
    return get_config();
}

class OperationsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
        vclock_reset();
        sim_host_run_commands(0);
    }
};

} // namespace

// ---- load-time state (first: they need a cache no get_config has written) ----------------------------

TEST_F(OperationsTest, CacheIsAllZeroAtLoad)
{
    IspConfig c = cached(), zero = zero_config();
    EXPECT_TRUE(same_bytes(&c, &zero, sizeof c));
}

TEST_F(OperationsTest, ASetOperationBeforeAnyGetConfigPassesAllZeroSettingsToItsSetter)
{
    host_preset(); // the host's values must not leak in: only get_config reads them
    const IspConfig zero = zero_config();
    for (const SetOperation &op : set_operations()) {
        SCOPED_TRACE(op.name);
        expect_same_effects(op, zero);
        IspConfig c = cached();
        EXPECT_TRUE(same_bytes(&c, &zero, sizeof c));
    }
}

// ---- CreateIspDev --------------------------------------------------------------------------------------

TEST_F(OperationsTest, CreateIspDevFillsTheSlotsInTheOrderOfTheTable)
{
    IspDev table;
    CreateIspDev(table);
    const IspOperation want[ISP_OPERATION_COUNT] = {
        QV_ISP_Start, QV_ISP_Stop,    set_exposure,   set_awb,        set_wdr,      set_blc,
        set_flcker,   set_dnr,        set_iris,       set_defog,      set_sharpness, set_brightness,
        set_Contrast, set_Saturation, set_SLInhibition, get_config,
    };
    for (size_t slot = 0; slot < ISP_OPERATION_COUNT; ++slot)
        EXPECT_EQ(table[slot], want[slot]) << "slot " << slot;
    EXPECT_EQ(table[6], &set_flcker);
    EXPECT_EQ(table[15], &get_config);
    for (const SetOperation &op : set_operations())
        EXPECT_EQ(table[op.slot], op.operation) << op.name;
}

TEST_F(OperationsTest, CreateIspDevStartsNothingAndMayBeCalledAnyNumberOfTimes)
{
    StdoutCapture capture;
    for (int round = 0; round < 3; ++round) {
        IspDev table;
        std::memset(table, 0x5A, sizeof table); // whatever the host's storage held
        CreateIspDev(table);
        EXPECT_EQ(table[0], &QV_ISP_Start);
        EXPECT_EQ(table[15], &get_config);
    }
    EXPECT_EQ(capture.take(), "");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(sim_host_log_count(), 0u);
    EXPECT_EQ(vclock_call_count(), 0u);
    EXPECT_EQ(gISPStatus, 0);
}

TEST_F(OperationsTest, CreateIspDevRefusesANullTable)
{
    StdoutCapture capture;
    CreateIspDev(nullptr);
    EXPECT_EQ(capture.take(), "CreateIspDev: argument is NULL, nothing done\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

// ---- get_config and the cache ---------------------------------------------------------------------------

TEST_F(OperationsTest, GetConfigCopiesAll100BytesOfTheSnapshotAndReturnsZero)
{
    host_preset();
    EXPECT_EQ(quiet_get_config(), 0);
    IspConfig c = cached(), want = snapshot_of_host();
    EXPECT_TRUE(same_bytes(&c, &want, sizeof c));
    EXPECT_EQ(c.u32Brightness, 200u);
    EXPECT_EQ(c.f32Sharpness, 64.0f);
    EXPECT_EQ(c.stWb.u32Mode, 1u);
    EXPECT_EQ(c.stDnr.u8Strength3d, 40);
    EXPECT_EQ(sim_mpp_log_count(), 0u) << "a snapshot makes no platform call";
}

TEST_F(OperationsTest, GetConfigWithoutAHostRecordCachesTheClearedRecord)
{
    host_preset();
    ASSERT_EQ(quiet_get_config(), 0);
    sim_host_sysinfo_null(1);
    EXPECT_EQ(quiet_get_config(), 0);
    IspConfig c = cached(), zero = zero_config();
    EXPECT_TRUE(same_bytes(&c, &zero, sizeof c));
    EXPECT_EQ(host_log_texts(), std::vector<std::string>{"GetSysInfo failed\n"});
}

TEST_F(OperationsTest, ASetOperationAppliesTheLastSnapshotNotTheHostRecordAsItIsNow)
{
    host_preset();
    ASSERT_EQ(quiet_get_config(), 0);
    const IspConfig snapshot = snapshot_of_host();
    for (const SetOperation &op : set_operations()) {
        SCOPED_TRACE(op.name);
        expect_same_effects(op, snapshot);
    }
    // The host changes its mind; until the next get_config the operations keep the snapshot.
    sim_host_set_field(SYSINFO_u8Brightness, 0);
    {
        StdoutCapture capture;
        EXPECT_EQ(set_brightness(), 0);
    }
    EXPECT_EQ(platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR).u32LumaVal, 200u * 100 / 255);
    ASSERT_EQ(quiet_get_config(), 0);
    {
        StdoutCapture capture;
        EXPECT_EQ(set_brightness(), 0);
    }
    EXPECT_EQ(platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR).u32LumaVal, 0u);
}

TEST_F(OperationsTest, SharpnessTravelsAsAFloatBitForBit)
{
    for (int byte : {0, 1, 127, 128, 129, 255}) {
        sim_host_set_field(SYSINFO_u8Sharpness, uint8_t(byte));
        ASSERT_EQ(quiet_get_config(), 0);
        const SetOperation &op = set_operations()[8];
        ASSERT_STREQ(op.name, "set_sharpness");
        IspConfig c = zero_config();
        c.f32Sharpness = float(byte);
        SCOPED_TRACE(byte);
        expect_same_effects(op, c);
    }
}

// ---- results ---------------------------------------------------------------------------------------------

TEST_F(OperationsTest, ASetterThatFailsStillYieldsZeroFromItsOperation)
{
    host_preset();
    ASSERT_EQ(quiet_get_config(), 0);
    const IspConfig snapshot = snapshot_of_host();
    for (const SetOperation &op : set_operations()) {
        SCOPED_TRACE(op.name);
        Effects clean = run([&] { return op.direct(snapshot); });
        ASSERT_FALSE(clean.calls.empty()) << "the preset gives every setter a platform call";
        // Every platform call of the setter fails from the first on.
        auto fail_all = [&](const std::function<int32_t()> &call) {
            return run([&] {
                for (const std::string &f : clean.calls)
                    sim_mpp_fail(f.c_str(), 1, SIM_MPP_ALWAYS, HI_ERR_ISP_NOT_INIT);
                return call();
            });
        };
        Effects failed_direct = fail_all([&] { return op.direct(snapshot); });
        EXPECT_EQ(failed_direct.result, -1) << "the setter itself fails";
        Effects failed_op = fail_all([&] { return op.operation(); });
        EXPECT_EQ(failed_op.result, 0);
        EXPECT_EQ(failed_op.out, failed_direct.out) << "the setter prints its own message";
        EXPECT_FALSE(failed_op.out.empty());
    }
}

TEST_F(OperationsTest, SettersThatNeedTheHostRecordFailWithoutItAndTheOperationStillYieldsZero)
{
    host_preset();
    ASSERT_EQ(quiet_get_config(), 0);
    sim_host_sysinfo_null(1);
    for (IspOperation op : {set_wdr, set_blc, set_dnr, set_SLInhibition}) {
        StdoutCapture capture;
        EXPECT_EQ(op(), 0);
    }
}

// ---- the cache is the operations' own -----------------------------------------------------------------------

TEST_F(OperationsTest, TheCacheIsUnchangedByAnySetOperation)
{
    host_preset();
    ASSERT_EQ(quiet_get_config(), 0);
    const IspConfig before = cached();
    for (int round = 0; round < 2; ++round)
        for (const SetOperation &op : set_operations()) {
            {
                StdoutCapture capture;
                EXPECT_EQ(op.operation(), 0) << op.name;
            }
            IspConfig now = cached();
            EXPECT_TRUE(same_bytes(&now, &before, sizeof now)) << op.name;
        }
}

TEST_F(OperationsTest, TheCacheIsUnchangedEvenWhenTheSetterRewritesTheFieldsOfItsGroup)
{
    // In mode 0 the noise-reduction setter writes 100 into both host strengths its group came from
    // (Part 4.5); the cached group keeps what the snapshot held.
    host_preset();
    sim_host_set_field(SYSINFO_u8DnrMode, 0);
    ASSERT_EQ(quiet_get_config(), 0);
    const IspConfig before = cached();
    ASSERT_EQ(before.stDnr.u8Strength2d, 30);
    {
        StdoutCapture capture;
        EXPECT_EQ(set_dnr(), 0);
    }
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr2dStrength), 100);
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr3dStrength), 100);
    IspConfig now = cached();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
    EXPECT_EQ(now.stDnr.u8Strength2d, 30);
    EXPECT_EQ(now.stDnr.u8Strength3d, 40);
}

TEST_F(OperationsTest, StartAndStopThroughTheTableLeaveTheCacheAlone)
{
    // QV_ISP_Start and QV_ISP_Stop in slots 0 and 1, on the free-running virtual clock.
    host_preset();
    ASSERT_EQ(quiet_get_config(), 0);
    const IspConfig before = cached();
    IspDev table;
    CreateIspDev(table);
    {
        StdoutCapture capture;
        EXPECT_EQ(table[0](), 0);
        ASSERT_EQ(vclock_wait_blocked(3), 0); // start-up wait and two passes
        EXPECT_EQ(table[1](), 0);
    }
    EXPECT_EQ(gISPStatus, 0);
    IspConfig now = cached();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

// ---- threads ----------------------------------------------------------------------------------------------

TEST_F(OperationsTest, GetConfigAndSetOperationsOnTwoHostThreadsAreDefinedAndSeeWholeWords)
{
    // The host snapshots on one thread while applying on another and changing its record on a third. No
    // lock is taken; under ThreadSanitizer this test must be silent, and every word a set operation reads
    // is one that a snapshot wrote.
    sim_mpp_log_enable(0);
    host_preset();
    std::atomic<bool> stop{false};
    std::thread host([&] {
        for (int i = 0; !stop.load(); ++i) {
            sim_host_set_field(SYSINFO_u8Brightness, (i & 1) ? 51 : 102);
            sim_host_set_field(SYSINFO_u8Sharpness, (i & 1) ? 64 : 192);
        }
    });
    std::thread snapshots([&] {
        for (int i = 0; i < 2000; ++i)
            get_config();
    });
    StdoutCapture capture;
    for (int i = 0; i < 2000; ++i) {
        EXPECT_EQ(set_brightness(), 0);
        EXPECT_EQ(set_sharpness(), 0);
        EXPECT_EQ(set_iris(), 0);
        IspConfig c = cached();
        EXPECT_TRUE(c.u32Brightness == 0 || c.u32Brightness == 51 || c.u32Brightness == 102 ||
                    c.u32Brightness == 200)
            << c.u32Brightness;
        EXPECT_TRUE(c.f32Sharpness == 0.0f || c.f32Sharpness == 64.0f || c.f32Sharpness == 192.0f)
            << c.f32Sharpness;
    }
    snapshots.join();
    stop = true;
    host.join();
}
