// ABI: libisptune.so exports exactly the spec's "External interfaces" (functions and data objects), each
// name present with its kind; the exported tables are checked one by one in abi_tables_test.cpp, and the
// other direction (nothing beyond the list) in abi_symbols_test.cpp as well as here.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "elf_symbols.h"

namespace {

// Every function named under "External interfaces", with its Part.
const std::set<std::string> kFunctions = {
    // Part 1.1: CreateIspDev and the sixteen operations, also exported by name
    "CreateIspDev", "QV_ISP_Start", "QV_ISP_Stop", "set_exposure", "set_awb", "set_wdr", "set_blc",
    "set_flcker", "set_dnr", "set_iris", "set_defog", "set_sharpness", "set_brightness", "set_Contrast",
    "set_Saturation", "set_SLInhibition", "get_config",
    // Parts 1.2 to 1.5
    "QV_ISP_Proc", "QV_ISP_SetVarParam", "QV_ISP_SetParam", "QV_ISP_FramerateAdjust",
    // Parts 2.3, 2.4, 3.2, 3.3
    "ISP_SetParamDay", "ISP_SetParamNight", "ISP_SetParamDayRefresh", "ISP_SetParamNightRefresh",
    // Parts 4.1 to 4.10
    "QV_ISP_GetConfig", "QV_ISP_SetExposureAttr", "QV_ISP_SetFlickerAttr", "QV_ISP_SetBLCAttr",
    "QV_ISP_GetExposureInfo", "QV_ISP_SetWBAttr", "QV_ISP_SetWDRAttr", "QV_ISP_SetSLInhibitionAttr",
    "QV_ISP_SetDNRAttr", "QV_ISP_SetIRAttr", "QV_ISP_SetDefogAttr", "QV_ISP_SetSharpnessAttr",
    "QV_ISP_SetBrightAttr", "QV_ISP_SetContrastAttr", "QV_ISP_SetSaturationAttr", "QV_ISP_GetDebugInfo",
};

// Every writable data object named there, with its size in bytes.
const std::map<std::string, uint64_t> kDataObjects = {
    {"gISPStatus", 4},          // Part 1.7
    {"ispParamReflashMark", 4}, // Part 1.2
    {"s32WdrParamMark", 4},     // Part 4.4
    {"stSLDRCAttr", 496},       // Part 4.4: an ISP_DRC_ATTR_S
    {"stSLExposureAttr", 412},  // Part 4.4: an ISP_EXPOSURE_ATTR_S
};

// The read-only tables of Parts 2.1 and 2.2, checked by name and size in abi_tables_test.cpp.
bool exported_table(const std::string &name)
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
    return name == "_init" || name == "_fini" || name == "__bss_start" || name == "_edata" || name == "_end" ||
           name == "__bss_start__" || name == "__bss_end__" || name == "_bss_end__" || name == "__end__";
}

// The library's defined global symbols, tables and linker symbols apart, by name.
std::map<std::string, ElfSymbol> exported()
{
    std::map<std::string, ElfSymbol> out;
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH))
        if (s.defined && s.global && !linker_defined(s.name) && !exported_table(s.name))
            out[s.name] = s;
    return out;
}

} // namespace

TEST(AbiInterface, ExportsEveryFunctionOfTheExternalInterfacesAsAFunction)
{
    const auto symbols = exported();
    for (const std::string &name : kFunctions) {
        auto it = symbols.find(name);
        ASSERT_NE(it, symbols.end()) << name << " is not exported";
        EXPECT_TRUE(it->second.function) << name << " is not a function";
    }
}

TEST(AbiInterface, ExportsEveryDataObjectWritableWithItsSize)
{
    const auto symbols = exported();
    for (const auto &[name, size] : kDataObjects) {
        auto it = symbols.find(name);
        ASSERT_NE(it, symbols.end()) << name << " is not exported";
        EXPECT_TRUE(it->second.object) << name << " is not a data object";
        EXPECT_TRUE(it->second.writable) << name << " is not writable";
        EXPECT_EQ(it->second.size, size) << name;
    }
}

TEST(AbiInterface, ExportsNothingElseBesideTheTables)
{
    for (const auto &[name, symbol] : exported())
        EXPECT_TRUE(kFunctions.count(name) || kDataObjects.count(name))
            << "libisptune.so exports " << name << ", which is not in the spec's External interfaces";
}

TEST(AbiInterface, TheSixteenOperationsAndTheOverlayQueryAreAllThere)
{
    // The operation table's names, spelled as the host expects them (Part 1.1).
    const std::vector<std::string> slots = {"QV_ISP_Start", "QV_ISP_Stop", "set_exposure", "set_awb",
                                            "set_wdr", "set_blc", "set_flcker", "set_dnr", "set_iris",
                                            "set_defog", "set_sharpness", "set_brightness", "set_Contrast",
                                            "set_Saturation", "set_SLInhibition", "get_config"};
    const auto symbols = exported();
    for (const std::string &name : slots)
        EXPECT_EQ(symbols.count(name), 1u) << name;
    for (const char *misspelt : {"set_flicker", "set_contrast", "set_saturation", "set_SlInhibition"})
        EXPECT_EQ(symbols.count(misspelt), 0u) << misspelt;
    EXPECT_EQ(symbols.count("QV_ISP_GetDebugInfo"), 1u);
}

TEST(AbiInterface, InternalStateAndHelpersStayHidden)
{
    const auto symbols = exported();
    for (const char *internal : {"ProfileMode", "isp_cached_config", "isp_attr_null_argument", "bSLDRCSaved",
                                 "isp_supervision_pass", "g_gamma_table_day", "gShutterTimeTable"})
        EXPECT_EQ(symbols.count(internal), 0u) << internal << " is internal and must not be exported";
}
