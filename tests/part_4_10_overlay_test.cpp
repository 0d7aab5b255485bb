// Part 4.10: debug overlay text (QV_ISP_GetDebugInfo).
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
}

namespace {

using Calls = std::vector<std::string>;
const Calls kQueries = {"HI_MPI_ISP_GetPubAttr", "HI_MPI_ISP_QueryExposureInfo", "HI_MPI_ISP_QueryWBInfo"};

constexpr size_t kLine = 1024;
constexpr int kLines = 4;
constexpr char kFill = '#'; // what the host's buffer holds before the call

// The figures behind one overlay line.
struct Figures {
    HI_U32 exp_time = 33500, long_exp_time = 500;
    HI_U32 again = 3994, dgain = 1024, ispdgain = 1229; // 3.9, 1.0, 1.2
    HI_U8 ave_lum = 57;
    HI_U16 colour_temp = 4875;
    HI_FLOAT frame_rate = 25.0f;
    double pmc = 41.5;
};

// The spec's typical full line, 53 characters.
const std::string kTypical = "S:33 L:0 A:3.9 D:1.0 I:1.2 L:57 C:4875 F:25.0 T:41.50";

void install(const Figures &f)
{
    ISP_EXP_INFO_S exp = platform_record<ISP_EXP_INFO_S>(SIM_REC_EXP_INFO);
    exp.u32ExpTime = f.exp_time;
    exp.u32LongExpTime = f.long_exp_time;
    exp.u32AGain = f.again;
    exp.u32DGain = f.dgain;
    exp.u32ISPDGain = f.ispdgain;
    exp.u8AveLum = f.ave_lum;
    sim_mpp_write(SIM_REC_EXP_INFO, &exp);
    ISP_WB_INFO_S wb = platform_record<ISP_WB_INFO_S>(SIM_REC_WB_INFO);
    wb.u16ColorTemp = f.colour_temp;
    sim_mpp_write(SIM_REC_WB_INFO, &wb);
    ISP_PUB_ATTR_S pub = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR);
    pub.f32FrameRate = f.frame_rate;
    sim_mpp_write(SIM_REC_PUB_ATTR, &pub);
    sim_host_set_pmc(f.pmc);
}

struct Outcome {
    int32_t result;
    std::string out;
    std::vector<char> buffer;
};

class OverlayTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
    }

    static Outcome debug_info(int32_t index = 1)
    {
        Outcome o{0, "", std::vector<char>(kLine * kLines, kFill)};
        StdoutCapture capture;
        o.result = QV_ISP_GetDebugInfo(o.buffer.data(), index);
        o.out = capture.take();
        return o;
    }

    static std::string line_of(const Outcome &o, int index = 1)
    {
        const char *line = o.buffer.data() + kLine * size_t(index);
        const void *end = std::memchr(line, '\0', kLine);
        return end ? std::string(line) : std::string("<no terminator>");
    }

    // Everything outside the written line (its text and terminator) still holds the fill.
    static void expect_only_line_written(const Outcome &o, int index = 1)
    {
        size_t start = kLine * size_t(index), end = start + line_of(o, index).size() + 1;
        for (size_t i = 0; i < o.buffer.size(); ++i) {
            if (i < start || i >= end) {
                ASSERT_EQ(o.buffer[i], kFill) << "byte " << i << " written";
            }
        }
    }

    static void expect_untouched(const Outcome &o)
    {
        for (size_t i = 0; i < o.buffer.size(); ++i)
            ASSERT_EQ(o.buffer[i], kFill) << "byte " << i << " written";
    }
};

std::string short_form(const std::string &full)
{
    size_t c = full.find(" C:");
    size_t f = full.find(" F:");
    return full.substr(0, c) + full.substr(f);
}

} // namespace

// ---- edge cases --------------------------------------------------------------------------------------

TEST_F(OverlayTest, A53CharacterLineIsUsedUnchanged)
{
    install(Figures{});
    Outcome o = debug_info();
    EXPECT_EQ(o.result, 0);
    ASSERT_EQ(kTypical.size(), 53u);
    EXPECT_EQ(line_of(o), kTypical);
    EXPECT_EQ(o.out, "strlen(aStr) = 53\nstWbInfo.u16ColorTemp = 4875\n");
    expect_only_line_written(o);
    EXPECT_EQ(platform_calls(), kQueries);
}

TEST_F(OverlayTest, A54CharacterLineTriggersTheTwoRebuildsAndYieldsTheShortenedLine)
{
    Figures f;
    f.pmc = 141.5; // T:141.50, one character more
    install(f);
    Outcome o = debug_info();
    EXPECT_EQ(o.result, 0);
    const std::string full = "S:33 L:0 A:3.9 D:1.0 I:1.2 L:57 C:4875 F:25.0 T:141.50";
    ASSERT_EQ(full.size(), 54u);
    const std::string shortened = "S:33 L:0 A:3.9 D:1.0 I:1.2 L:57 F:25.0 T:141.50";
    EXPECT_EQ(line_of(o), shortened);
    EXPECT_EQ(o.out, "strlen(aStr) = 54\n"
                     "nStrNum > 53 byte, OSD is not OK\n"
                     "[Change One]strlen(aStr) = 54\n"
                     "[Change Two]strlen(aStr) = 47\n"
                     "stWbInfo.u16ColorTemp = 4875\n");
    expect_only_line_written(o);
    EXPECT_EQ(sim_host_pmc_calls(), 1u) << "one reading serves every pass";
    EXPECT_EQ(platform_calls(), kQueries) << "the same records serve every pass";
}

TEST_F(OverlayTest, ColourTemperature10000MakesTheLineOneLongerAndTheResultHasNoColourItem)
{
    Figures f;
    install(f);
    Outcome four = debug_info();
    f.colour_temp = 10000;
    install(f);
    Outcome five = debug_info();
    EXPECT_EQ(five.result, 0);
    EXPECT_EQ(five.out, "strlen(aStr) = 54\n"
                        "nStrNum > 53 byte, OSD is not OK\n"
                        "[Change One]strlen(aStr) = 53\n" // 9999 has four digits again
                        "[Change Two]strlen(aStr) = 46\n"
                        "stWbInfo.u16ColorTemp = 10000\n");
    EXPECT_EQ(line_of(five), short_form(kTypical));
    EXPECT_EQ(line_of(five).find(" C:"), std::string::npos);
    EXPECT_EQ(line_of(four), kTypical);
}

TEST_F(OverlayTest, RebuiltResultNeverContainsTheColourItem)
{
    for (HI_U16 ct : {HI_U16(10000), HI_U16(12345), HI_U16(65535)}) {
        for (double pmc : {41.5, 12345.678, -99999.0}) {
            Figures f;
            f.colour_temp = ct;
            f.pmc = pmc;
            install(f);
            Outcome o = debug_info();
            EXPECT_EQ(o.result, 0);
            EXPECT_EQ(line_of(o).find(" C:"), std::string::npos) << ct << " " << pmc;
            EXPECT_NE(o.out.find("[Change Two]"), std::string::npos);
        }
    }
}

TEST_F(OverlayTest, ExposureTime999ShowsAsS0And33333AsS33)
{
    Figures f;
    f.exp_time = 999;
    install(f);
    EXPECT_EQ(line_of(debug_info()).substr(0, 4), "S:0 ");
    f.exp_time = 33333;
    install(f);
    EXPECT_EQ(line_of(debug_info()).substr(0, 5), "S:33 ");
}

TEST_F(OverlayTest, SecondExposureTimeIsTheLongExposureInMilliseconds)
{
    Figures f;
    f.long_exp_time = 40999;
    install(f);
    EXPECT_EQ(line_of(debug_info()).substr(0, 10), "S:33 L:40 ");
}

TEST_F(OverlayTest, Gain1024ShowsAs1Point0And1536As1Point5)
{
    Figures f;
    f.again = 1024;
    f.dgain = 1536;
    f.ispdgain = 1024;
    install(f);
    EXPECT_EQ(line_of(debug_info()), "S:33 L:0 A:1.0 D:1.5 I:1.0 L:57 C:4875 F:25.0 T:41.50");
    f.again = 1536;
    f.dgain = 1024;
    f.ispdgain = 1536;
    install(f);
    EXPECT_EQ(line_of(debug_info()), "S:33 L:0 A:1.5 D:1.0 I:1.5 L:57 C:4875 F:25.0 T:41.50");
}

TEST_F(OverlayTest, PublicAttributeReadFailingReturnsItsOwnCodeNotMinusOneAndWritesNothing)
{
    install(Figures{});
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetPubAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = debug_info();
    EXPECT_EQ(o.result, HI_ERR_ISP_NOT_INIT);
    EXPECT_NE(o.result, -1);
    EXPECT_EQ(o.out, "");
    expect_untouched(o);
    ASSERT_NO_FATAL_FAILURE(expect_only_syserror_entry("HI_MPI_ISP_GetPubAttr failue!!!\n"));
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_GetPubAttr"});
    EXPECT_EQ(sim_host_pmc_calls(), 0u);
}

// ---- the other failures and the host's input ---------------------------------------------------------

TEST_F(OverlayTest, ExposureQueryFailsMinusOneNothingWritten)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_QueryExposureInfo", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = debug_info();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_QueryExposureInfo failed with 0xa01c8040\n");
    expect_untouched(o);
    EXPECT_EQ(platform_calls(), Calls(kQueries.begin(), kQueries.begin() + 2));
    EXPECT_EQ(sim_host_pmc_calls(), 0u);
}

TEST_F(OverlayTest, WhiteBalanceQueryFailsMinusOneNothingWritten)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_QueryWBInfo", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = debug_info();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_QueryWBInfo failed\n");
    expect_untouched(o);
    EXPECT_EQ(platform_calls(), kQueries);
    EXPECT_EQ(sim_host_pmc_calls(), 0u);
}

TEST_F(OverlayTest, PmcReadOnceOnChannelZero)
{
    install(Figures{});
    debug_info();
    EXPECT_EQ(sim_host_pmc_calls(), 1u);
    EXPECT_EQ(sim_host_pmc_last_channel(), 0);
}

TEST_F(OverlayTest, LineGoesToTheSlotOfTheIndex)
{
    install(Figures{});
    for (int index = 0; index < kLines; ++index) {
        Outcome o = debug_info(index);
        EXPECT_EQ(o.result, 0);
        EXPECT_EQ(line_of(o, index), kTypical) << index;
        expect_only_line_written(o, index);
    }
}

TEST_F(OverlayTest, NegativeIndexRefusedBeforeAnyCall)
{
    Outcome o = debug_info(-1);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "QV_ISP_GetDebugInfo: index -1 is negative, nothing done\n");
    expect_untouched(o);
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(sim_host_pmc_calls(), 0u);
}

TEST_F(OverlayTest, NullLinesRefusedBeforeAnyCall)
{
    StdoutCapture capture;
    EXPECT_EQ(QV_ISP_GetDebugInfo(nullptr, 0), -1);
    EXPECT_EQ(capture.take(), "QV_ISP_GetDebugInfo: argument is NULL, nothing done\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

TEST_F(OverlayTest, ExtremeFiguresStayWithinTheBuffer)
{
    // Whatever the platform and Pmc_Read return, each pass is cut at 255 characters and the host line gets
    // at most 256 bytes (under AddressSanitizer any overrun would stop the test).
    const double readings[] = {DBL_MAX, -DBL_MAX, std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(), 1e-300};
    const float rates[] = {FLT_MAX, -FLT_MAX, std::numeric_limits<float>::quiet_NaN(), 0.0f};
    for (double pmc : readings)
        for (float rate : rates) {
            Figures f;
            f.exp_time = f.long_exp_time = f.again = f.dgain = f.ispdgain = 0xFFFFFFFFu;
            f.ave_lum = 255;
            f.colour_temp = 65535;
            f.frame_rate = rate;
            f.pmc = pmc;
            install(f);
            Outcome o = debug_info();
            EXPECT_EQ(o.result, 0);
            std::string line = line_of(o);
            EXPECT_LE(line.size(), 255u);
            EXPECT_EQ(line.find(" C:"), std::string::npos);
            EXPECT_EQ(line.rfind("S:4294967 L:4294967 A:4194304.0 D:4194304.0 I:4194304.0 L:255 F:", 0), 0u) << line;
            expect_only_line_written(o);
        }
}

TEST_F(OverlayTest, TruncatedPassesReportTheTruncatedLength)
{
    Figures f;
    f.pmc = DBL_MAX; // some 300 digits: every pass is cut to 255 characters
    install(f);
    Outcome o = debug_info();
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "strlen(aStr) = 255\n"
                     "nStrNum > 53 byte, OSD is not OK\n"
                     "[Change One]strlen(aStr) = 255\n"
                     "[Change Two]strlen(aStr) = 255\n"
                     "stWbInfo.u16ColorTemp = 4875\n");
    EXPECT_EQ(line_of(o).size(), 255u);
}

TEST_F(OverlayTest, PowerOnFigures)
{
    // The simulator's power-on state: 10000 us both, unit gains, AveLum 56, 5100 K, 30 fps, Pmc 0.
    Outcome o = debug_info(0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(line_of(o, 0), "S:10 L:10 A:1.0 D:1.0 I:1.0 L:56 C:5100 F:30.0 T:0.00");
}
