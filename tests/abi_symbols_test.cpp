// ABI: libisptune.so exports only the spec's "External interfaces", defines no platform or host symbol
// (they stay undefined, bound by the process that loads it), and links only libc, libpthread and libm.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "elf_symbols.h"

namespace {

// Every function and data object named under the spec's "External interfaces" (tables apart: their
// names follow patterns, checked in allowed_table below and one by one in abi_tables_test.cpp).
const std::set<std::string> kExternalInterface = {
    // Part 1.1: CreateIspDev and the sixteen operations
    "CreateIspDev", "set_exposure", "set_awb", "set_wdr", "set_blc", "set_flcker", "set_dnr", "set_iris",
    "set_defog", "set_sharpness", "set_brightness", "set_Contrast", "set_Saturation", "set_SLInhibition",
    "get_config",
    // Parts 1.2 to 1.7
    "QV_ISP_Start", "QV_ISP_Stop", "QV_ISP_Proc", "QV_ISP_SetVarParam", "QV_ISP_SetParam",
    "QV_ISP_FramerateAdjust", "gISPStatus", "ispParamReflashMark",
    // Parts 2.3, 2.4, 3.2, 3.3
    "ISP_SetParamDay", "ISP_SetParamNight", "ISP_SetParamDayRefresh", "ISP_SetParamNightRefresh",
    // Parts 4.1 to 4.10
    "QV_ISP_GetConfig", "QV_ISP_SetExposureAttr", "QV_ISP_SetFlickerAttr", "QV_ISP_SetBLCAttr",
    "QV_ISP_GetExposureInfo", "QV_ISP_SetWBAttr", "QV_ISP_SetWDRAttr", "QV_ISP_SetSLInhibitionAttr",
    "QV_ISP_SetDNRAttr", "QV_ISP_SetIRAttr", "QV_ISP_SetDefogAttr", "QV_ISP_SetSharpnessAttr",
    "QV_ISP_SetBrightAttr", "QV_ISP_SetContrastAttr", "QV_ISP_SetSaturationAttr", "QV_ISP_GetDebugInfo",
    // Part 4.4 data objects
    "stSLDRCAttr", "stSLExposureAttr", "s32WdrParamMark",
};

// The exported read-only tables of Parts 2.1 and 2.2.
bool allowed_table(const std::string &name)
{
    auto ends_with = [&](const std::string &s) {
        return name.size() >= s.size() && name.compare(name.size() - s.size(), s.size(), s) == 0;
    };
    return name.rfind("gColor", 0) == 0 || name.rfind("gNight", 0) == 0 ||
           (name.rfind("g_3dnr_", 0) == 0 && ends_with("_night")) || name == "g_gamma_table_night";
}

// Symbols the static linker defines in every shared object.
bool linker_defined(const std::string &name)
{
    return name == "_init" || name == "_fini" || name == "__bss_start" || name == "_edata" ||
           name == "_end" || name == "__bss_start__" || name == "__bss_end__" || name == "_bss_end__" ||
           name == "__end__";
}

// The host services of Part 1.6.
const std::set<std::string> kHostServices = {"GetSysInfo", "QV_SYSLOG", "QV_SYSERROR", "QV_SYSINFO",
                                             "LogTrace", "QV_Command_System", "QV_GET_IRCUT_VALUE",
                                             "Pmc_Read"};

} // namespace

TEST(AbiSymbols, ExportsNothingBeyondTheExternalInterface)
{
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH)) {
        if (!s.defined || !s.global || linker_defined(s.name))
            continue;
        EXPECT_TRUE(kExternalInterface.count(s.name) || allowed_table(s.name))
            << "libisptune.so exports " << s.name << ", which is not in the spec's External interfaces";
    }
}

TEST(AbiSymbols, DefinesNoPlatformCall)
{
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH))
        if (s.name.rfind("HI_MPI_", 0) == 0) {
            EXPECT_FALSE(s.defined) << s.name << " is defined in libisptune.so; it belongs to the platform";
        }
}

TEST(AbiSymbols, DefinesNoHostService)
{
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH))
        if (kHostServices.count(s.name)) {
            EXPECT_FALSE(s.defined) << s.name << " is defined in libisptune.so; it belongs to the host";
        }
}

TEST(AbiSymbols, LeavesThePlatformCallsItMakesUndefined)
{
    auto symbols = read_dynamic_symbols(ISPTUNE_SO_PATH);
    auto undefined = [&](const std::string &name) {
        return std::any_of(symbols.begin(), symbols.end(),
                           [&](const ElfSymbol &s) { return s.name == name && !s.defined; });
    };
    // Part 3.1's record update is in every build of the library.
    EXPECT_TRUE(undefined("HI_MPI_VPSS_GetGrpNRSParam"));
    EXPECT_TRUE(undefined("HI_MPI_VPSS_SetGrpNRSParam"));
}

TEST(AbiSymbols, DefinesNoSleep)
{
    // Time is the process's (design: seam 3): a test or isptune-sim binds sleep/usleep to its virtual clock.
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH))
        if (s.name == "sleep" || s.name == "usleep") {
            EXPECT_FALSE(s.defined) << s.name;
        }
}

TEST(AbiSymbols, LinksOnlyLibcLibpthreadAndLibm)
{
    for (const std::string &lib : read_needed_libraries(ISPTUNE_SO_PATH)) {
        bool runtime = lib.rfind("libc.so", 0) == 0 || lib.rfind("libm.so", 0) == 0 ||
                       lib.rfind("libpthread.so", 0) == 0 || lib.rfind("ld-linux", 0) == 0;
        // Sanitizer builds add their runtime to every object they instrument.
        bool sanitizer = lib.rfind("libasan", 0) == 0 || lib.rfind("libubsan", 0) == 0 ||
                         lib.rfind("libtsan", 0) == 0;
        EXPECT_TRUE(runtime || sanitizer) << "libisptune.so needs " << lib;
    }
}
