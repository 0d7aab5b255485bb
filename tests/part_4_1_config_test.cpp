// Part 4.1: the configuration record (QV_ISP_GetConfig).
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "call_test_support.h"


namespace {

class Config : public SimClockTest {};

// Sets every host field the record is filled from to a value of its own.
void set_distinct_host_fields()
{
    const struct {
        int pos;
        uint8_t value;
    } fields[] = {
        {SYSINFO_u8Brightness, 11},         {SYSINFO_u8Contrast, 12},           {SYSINFO_u8Saturation, 13},
        {SYSINFO_u8Sharpness, 14},          {SYSINFO_u8ManualGain, 15},         {SYSINFO_u8WbMode, 1},
        {SYSINFO_u8WbRed, 17},              {SYSINFO_u8WbGreen, 18},            {SYSINFO_u8WbBlue, 19},
        {SYSINFO_u8BlcEnable, 20},          {SYSINFO_u8BlcLevel, 21},           {SYSINFO_u8FlickerMode, 22},
        {SYSINFO_u8Shutter, 23},            {SYSINFO_u8ExposureMode, 24},       {SYSINFO_u8WdrMode, 25},
        {SYSINFO_u8WdrLevel, 26},           {SYSINFO_u8DnrMode, 27},            {SYSINFO_u8Dnr2dStrength, 28},
        {SYSINFO_u8Dnr3dStrength, 29},      {SYSINFO_u8DefogMode, 30},          {SYSINFO_u8DefogReserved, 31},
        {SYSINFO_u8DefogStrength, 32},      {SYSINFO_u8SlInhibitionEnable, 33}, {SYSINFO_u8SlInhibitionLevel, 34},
        {SYSINFO_u8SlDrcStrength, 35},
    };
    for (const auto &f : fields)
        ASSERT_EQ(sim_host_set_field(size_t(f.pos), f.value), 0);
}

// Byte offsets 0..99 that no host field feeds (Part 4.1, Data model and Edge cases).
bool is_sourceless_byte(size_t i)
{
    return i <= 7 || (i >= 28 && i <= 63) || i == 69 || i == 70 || (i >= 77 && i <= 79) || i == 99 ||
           i == 27; // the reserved byte of IspWbCfg
}

} // namespace

// ---- layout: the offsets of Part 4.1's table, pinned -----------------------------------------------------

TEST(ConfigLayout, RecordOffsetsMatchThePartsTable)
{
    EXPECT_EQ(sizeof(IspConfig), 100u);
    EXPECT_EQ(offsetof(IspConfig, au8Reserved0), 0u);
    EXPECT_EQ(offsetof(IspConfig, stExposure), 8u);
    EXPECT_EQ(offsetof(IspConfig, stWb), 20u);
    EXPECT_EQ(offsetof(IspConfig, au8Reserved1), 28u);
    EXPECT_EQ(offsetof(IspConfig, stBlc), 64u);
    EXPECT_EQ(offsetof(IspConfig, stWdr), 66u);
    EXPECT_EQ(offsetof(IspConfig, stFlicker), 68u);
    EXPECT_EQ(offsetof(IspConfig, stIris), 69u);
    EXPECT_EQ(offsetof(IspConfig, stDefog), 71u);
    EXPECT_EQ(offsetof(IspConfig, stDnr), 74u);
    EXPECT_EQ(offsetof(IspConfig, au8Reserved2), 77u);
    EXPECT_EQ(offsetof(IspConfig, f32Sharpness), 80u);
    EXPECT_EQ(offsetof(IspConfig, u32Brightness), 84u);
    EXPECT_EQ(offsetof(IspConfig, u32Contrast), 88u);
    EXPECT_EQ(offsetof(IspConfig, u32Saturation), 92u);
    EXPECT_EQ(offsetof(IspConfig, stSlInhibition), 96u);
    EXPECT_EQ(offsetof(IspConfig, u8Reserved3), 99u);
}

TEST(ConfigLayout, GroupSizesAndFieldOffsets)
{
    EXPECT_EQ(sizeof(IspExposureCfg), 12u);
    EXPECT_EQ(offsetof(IspExposureCfg, u32Mode), 0u);
    EXPECT_EQ(offsetof(IspExposureCfg, u32ManualGain), 4u);
    EXPECT_EQ(offsetof(IspExposureCfg, u32Shutter), 8u);
    EXPECT_EQ(sizeof(IspWbCfg), 8u);
    EXPECT_EQ(offsetof(IspWbCfg, u32Mode), 0u);
    EXPECT_EQ(offsetof(IspWbCfg, u8Red), 4u);
    EXPECT_EQ(offsetof(IspWbCfg, u8Green), 5u);
    EXPECT_EQ(offsetof(IspWbCfg, u8Blue), 6u);
    EXPECT_EQ(offsetof(IspWbCfg, u8Reserved), 7u);
    EXPECT_EQ(sizeof(IspBlcCfg), 2u);
    EXPECT_EQ(offsetof(IspBlcCfg, u8Level), 1u);
    EXPECT_EQ(sizeof(IspWdrCfg), 2u);
    EXPECT_EQ(offsetof(IspWdrCfg, u8Level), 1u);
    EXPECT_EQ(sizeof(IspFlickerCfg), 1u);
    EXPECT_EQ(sizeof(IspIrisCfg), 2u);
    EXPECT_EQ(sizeof(IspDefogCfg), 3u);
    EXPECT_EQ(offsetof(IspDefogCfg, u8Reserved), 1u);
    EXPECT_EQ(offsetof(IspDefogCfg, u8Strength), 2u);
    EXPECT_EQ(sizeof(IspDnrCfg), 3u);
    EXPECT_EQ(offsetof(IspDnrCfg, u8Strength2d), 1u);
    EXPECT_EQ(offsetof(IspDnrCfg, u8Strength3d), 2u);
    EXPECT_EQ(sizeof(IspSlInhibitionCfg), 3u);
    EXPECT_EQ(offsetof(IspSlInhibitionCfg, u8Level), 1u);
    EXPECT_EQ(offsetof(IspSlInhibitionCfg, u8DrcStrength), 2u);
}

// ---- the algorithm ---------------------------------------------------------------------------------------

TEST_F(Config, FillsEveryFieldFromItsHostByte)
{
    set_distinct_host_fields();
    IspConfig c;
    ASSERT_EQ(QV_ISP_GetConfig(&c), &c);
    EXPECT_EQ(c.stExposure.u32Mode, 24u);
    EXPECT_EQ(c.stExposure.u32ManualGain, 15u);
    EXPECT_EQ(c.stExposure.u32Shutter, 23u);
    EXPECT_EQ(c.stWb.u32Mode, 1u);
    EXPECT_EQ(c.stWb.u8Red, 17);
    EXPECT_EQ(c.stWb.u8Green, 18);
    EXPECT_EQ(c.stWb.u8Blue, 19);
    EXPECT_EQ(c.stWb.u8Reserved, 0);
    EXPECT_EQ(c.stBlc.u8Enable, 20);
    EXPECT_EQ(c.stBlc.u8Level, 21);
    EXPECT_EQ(c.stWdr.u8Mode, 25);
    EXPECT_EQ(c.stWdr.u8Level, 26);
    EXPECT_EQ(c.stFlicker.u8Mode, 22);
    EXPECT_EQ(c.stIris.u8Mode, 0);
    EXPECT_EQ(c.stIris.u8Reserved, 0);
    EXPECT_EQ(c.stDefog.u8Mode, 30);
    EXPECT_EQ(c.stDefog.u8Reserved, 31);
    EXPECT_EQ(c.stDefog.u8Strength, 32);
    EXPECT_EQ(c.stDnr.u8Mode, 27);
    EXPECT_EQ(c.stDnr.u8Strength2d, 28);
    EXPECT_EQ(c.stDnr.u8Strength3d, 29);
    EXPECT_EQ(c.f32Sharpness, 14.0f);
    EXPECT_EQ(c.u32Brightness, 11u);
    EXPECT_EQ(c.u32Contrast, 12u);
    EXPECT_EQ(c.u32Saturation, 13u);
    EXPECT_EQ(c.stSlInhibition.u8Enable, 33);
    EXPECT_EQ(c.stSlInhibition.u8Level, 34);
    EXPECT_EQ(c.stSlInhibition.u8DrcStrength, 35);
}

TEST_F(Config, WordsAreZeroExtendedLittleEndian)
{
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8ManualGain, 255), 0);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8Brightness, 0xFE), 0);
    IspConfig c;
    QV_ISP_GetConfig(&c);
    const unsigned char *b = reinterpret_cast<const unsigned char *>(&c);
    EXPECT_EQ(b[12], 255);
    EXPECT_EQ(b[13] | b[14] | b[15], 0);
    EXPECT_EQ(b[84], 0xFE);
    EXPECT_EQ(b[85] | b[86] | b[87], 0);
}

TEST_F(Config, HostDefaultsGiveTheExpectedRecord)
{
    IspConfig c;
    QV_ISP_GetConfig(&c);
    EXPECT_EQ(c.f32Sharpness, 128.0f);
    EXPECT_EQ(c.u32Brightness, 128u);
    EXPECT_EQ(c.u32Contrast, 128u);
    EXPECT_EQ(c.u32Saturation, 128u);
    EXPECT_EQ(c.stFlicker.u8Mode, 1);
    EXPECT_EQ(c.stExposure.u32Mode, 0u);
    EXPECT_EQ(c.stWb.u32Mode, 0u);
}

TEST_F(Config, MakesNoPlatformCallAndNoLogEntry)
{
    IspConfig c;
    StdoutCapture out;
    QV_ISP_GetConfig(&c);
    EXPECT_EQ(out.take(), "");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(sim_host_log_count(), 0u);
}

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(Config, WbModeSevenYieldsModeWordOneAndZeroYieldsZero)
{
    IspConfig c;
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WbMode, 7), 0);
    QV_ISP_GetConfig(&c);
    EXPECT_EQ(c.stWb.u32Mode, 1u);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WbMode, 0), 0);
    QV_ISP_GetConfig(&c);
    EXPECT_EQ(c.stWb.u32Mode, 0u);
    for (int v = 1; v < 256; ++v) { // every nonzero byte is reduced to 1
        ASSERT_EQ(sim_host_set_field(SYSINFO_u8WbMode, uint8_t(v)), 0);
        QV_ISP_GetConfig(&c);
        ASSERT_EQ(c.stWb.u32Mode, 1u) << v;
    }
}

TEST_F(Config, SharpnessConvertsExactlyToFloat255And128)
{
    IspConfig c;
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8Sharpness, 255), 0);
    QV_ISP_GetConfig(&c);
    EXPECT_EQ(c.f32Sharpness, 255.0f);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8Sharpness, 128), 0);
    QV_ISP_GetConfig(&c);
    EXPECT_EQ(c.f32Sharpness, 128.0f); // the sharpness setter's neutral value (Part 4.8)
    for (int v = 0; v < 256; ++v) {
        ASSERT_EQ(sim_host_set_field(SYSINFO_u8Sharpness, uint8_t(v)), 0);
        QV_ISP_GetConfig(&c);
        ASSERT_EQ(c.f32Sharpness, float(v));
    }
}

TEST_F(Config, ReservedBytesAreZeroWhateverTheHostRecordHolds)
{
    std::memset(sim_host_sysinfo(), 0xFF, SIM_HOST_SYSINFO_SIZE);
    IspConfig c;
    QV_ISP_GetConfig(&c);
    const unsigned char *b = reinterpret_cast<const unsigned char *>(&c);
    for (size_t i = 0; i < sizeof c; ++i) {
        bool must_be_zero = i <= 7 || (i >= 28 && i <= 63) || i == 69 || i == 70 || (i >= 77 && i <= 79) ||
                            i == 99;
        if (must_be_zero) {
            EXPECT_EQ(b[i], 0) << "byte " << i;
        }
    }
    EXPECT_EQ(c.stWb.u32Mode, 1u); // 0xFF normalised
    EXPECT_EQ(c.stWb.u8Reserved, 0);
}

TEST_F(Config, CallersRecordIsFullyOverwrittenIncludingSourcelessFields)
{
    set_distinct_host_fields();
    IspConfig dirty, clean;
    std::memset(&dirty, 0xAB, sizeof dirty);
    std::memset(&clean, 0, sizeof clean);
    QV_ISP_GetConfig(&dirty);
    QV_ISP_GetConfig(&clean);
    EXPECT_TRUE(same_bytes(&dirty, &clean, sizeof dirty));
    const unsigned char *b = reinterpret_cast<const unsigned char *>(&dirty);
    for (size_t i = 0; i < sizeof dirty; ++i)
        if (is_sourceless_byte(i)) {
            EXPECT_EQ(b[i], 0) << "byte " << i;
        }
}

TEST_F(Config, CallingTwiceWithAnUnchangedHostRecordYieldsIdenticalRecords)
{
    set_distinct_host_fields();
    IspConfig first, second;
    std::memset(&first, 0x11, sizeof first);
    std::memset(&second, 0x22, sizeof second);
    QV_ISP_GetConfig(&first);
    QV_ISP_GetConfig(&second);
    EXPECT_TRUE(same_bytes(&first, &second, sizeof first));
}

// ---- Failure handling and bad input ----------------------------------------------------------------------

TEST_F(Config, NoHostRecordLogsAndReturnsTheClearedRecord)
{
    sim_host_sysinfo_null(1);
    IspConfig c;
    std::memset(&c, 0x5A, sizeof c);
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_GetConfig(&c), &c);
    EXPECT_EQ(out.take(), "");
    IspConfig zero;
    std::memset(&zero, 0, sizeof zero);
    EXPECT_TRUE(same_bytes(&c, &zero, sizeof c));
    expect_only_syslog_entry("GetSysInfo failed\n");
}

TEST_F(Config, NullRecordIsRefusedWithAMessage)
{
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_GetConfig(nullptr), nullptr);
    EXPECT_EQ(out.take(), "QV_ISP_GetConfig: argument is NULL, nothing done\n");
    EXPECT_EQ(sim_host_log_count(), 0u);
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}
