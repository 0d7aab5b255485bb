// ABI of Parts 4.1 to 4.5 and 4.7 in libisptune.so: the exported data objects of Part 4.4 with their exact
// sizes, writable; the setters exported as functions; the internal names of these Parts not exported.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "elf_symbols.h"

namespace {

std::map<std::string, ElfSymbol> all_symbols()
{
    std::map<std::string, ElfSymbol> out;
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH))
        out[s.name] = s;
    return out;
}

} // namespace

TEST(AbiAttributesOne, Part44DataObjectsAreExportedWritableWithTheirSizes)
{
    const struct {
        const char *name;
        uint64_t size;
    } objects[] = {{"stSLDRCAttr", 496}, {"stSLExposureAttr", 412}, {"s32WdrParamMark", 4}};
    const auto symbols = all_symbols();
    for (const auto &o : objects) {
        auto it = symbols.find(o.name);
        ASSERT_NE(it, symbols.end()) << o.name << " is not in the dynamic symbol table";
        const ElfSymbol &s = it->second;
        EXPECT_TRUE(s.defined) << o.name;
        EXPECT_TRUE(s.global) << o.name;
        EXPECT_TRUE(s.object) << o.name << " is not a data object";
        EXPECT_EQ(s.size, o.size) << o.name;
        EXPECT_TRUE(s.writable) << o.name << " is data, not const: it must lie in a writable section";
    }
}

TEST(AbiAttributesOne, SettersAndQueriesAreExportedFunctions)
{
    const char *functions[] = {"QV_ISP_GetConfig",       "QV_ISP_SetExposureAttr", "QV_ISP_SetFlickerAttr",
                               "QV_ISP_SetBLCAttr",      "QV_ISP_GetExposureInfo", "QV_ISP_SetWBAttr",
                               "QV_ISP_SetWDRAttr",      "QV_ISP_SetSLInhibitionAttr", "QV_ISP_SetDNRAttr",
                               "QV_ISP_SetDefogAttr"};
    const auto symbols = all_symbols();
    for (const char *name : functions) {
        auto it = symbols.find(name);
        ASSERT_NE(it, symbols.end()) << name << " is not exported";
        EXPECT_TRUE(it->second.defined && it->second.global && it->second.function) << name;
    }
}

TEST(AbiAttributesOne, InternalNamesAreNotExported)
{
    const char *internal[] = {"gShutterTimeTable", "bSLDRCSaved", "QV_ISP_Set3DNRAttr", "QV_ISP_Set2DNRAttr",
                              "isp_attr_null_argument"};
    const auto symbols = all_symbols();
    for (const char *name : internal) {
        auto it = symbols.find(name);
        EXPECT_TRUE(it == symbols.end() || !it->second.defined) << name << " is internal but exported";
    }
}
