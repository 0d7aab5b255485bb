// Part 1.6: System information record and host services: SysInfo byte positions and the byte accessors.
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "platform/host.h"
#include "sim_host.h"
#include "sysinfo_access.h"

namespace {

struct Field {
    int position; // from host.h
    int expected; // Part 1.6's table, typed here independently
    const char *name;
};

// Every field of Part 1.6's table, in the order in which they lie in the record.
const Field kFields[] = {
    {SYSINFO_u8Brightness, 1300, "u8Brightness"},
    {SYSINFO_u8Contrast, 1301, "u8Contrast"},
    {SYSINFO_u8Saturation, 1302, "u8Saturation"},
    {SYSINFO_u8Sharpness, 1303, "u8Sharpness"},
    {SYSINFO_u8ManualGain, 1305, "u8ManualGain"},
    {SYSINFO_u8WbMode, 1307, "u8WbMode"},
    {SYSINFO_u8WbRed, 1308, "u8WbRed"},
    {SYSINFO_u8WbGreen, 1309, "u8WbGreen"},
    {SYSINFO_u8WbBlue, 1310, "u8WbBlue"},
    {SYSINFO_u8BlcEnable, 1311, "u8BlcEnable"},
    {SYSINFO_u8BlcLevel, 1312, "u8BlcLevel"},
    {SYSINFO_u8FlickerMode, 1313, "u8FlickerMode"},
    {SYSINFO_u8WatchedMode, 1316, "u8WatchedMode"},
    {SYSINFO_u8Shutter, 1319, "u8Shutter"},
    {SYSINFO_u8ExposureMode, 1320, "u8ExposureMode"},
    {SYSINFO_u8WdrMode, 1322, "u8WdrMode"},
    {SYSINFO_u8WdrLevel, 1323, "u8WdrLevel"},
    {SYSINFO_u8DnrMode, 1324, "u8DnrMode"},
    {SYSINFO_u8Dnr2dStrength, 1325, "u8Dnr2dStrength"},
    {SYSINFO_u8Dnr3dStrength, 1326, "u8Dnr3dStrength"},
    {SYSINFO_u8DefogMode, 1327, "u8DefogMode"},
    {SYSINFO_u8DefogReserved, 1328, "u8DefogReserved"},
    {SYSINFO_u8DefogStrength, 1329, "u8DefogStrength"},
    {SYSINFO_u8SlInhibitionEnable, 1331, "u8SlInhibitionEnable"},
    {SYSINFO_u8SlInhibitionLevel, 1332, "u8SlInhibitionLevel"},
    {SYSINFO_u8SlDrcStrength, 1403, "u8SlDrcStrength"},
};

constexpr size_t kRecordSize = 2048; // larger than the last position, like the host's record

// A record-sized buffer filled with a pattern in which neighbouring bytes differ.
struct Record {
    alignas(16) unsigned char bytes[kRecordSize];
    Record()
    {
        for (size_t i = 0; i < kRecordSize; i++) bytes[i] = static_cast<unsigned char>(i * 7 + 3);
    }
};

TEST(Part_1_6_SysInfo, EveryFieldLiesAtThePositionOfTheTable)
{
    for (const Field &field : kFields) {
        EXPECT_EQ(field.position, field.expected) << field.name;
    }
}

TEST(Part_1_6_SysInfo, TheTableHasTwentySixFieldsInRecordOrder)
{
    EXPECT_EQ(sizeof kFields / sizeof kFields[0], 26u);
    for (size_t i = 1; i < sizeof kFields / sizeof kFields[0]; i++) {
        EXPECT_LT(kFields[i - 1].expected, kFields[i].expected) << kFields[i].name;
    }
}

TEST(Part_1_6_SysInfo, ModuleCodeIsFourteen)
{
    EXPECT_EQ(ISP_MODULE_CODE, 14);
}

TEST(Part_1_6_SysInfo, SysinfoGetReadsExactlyTheFieldsByte)
{
    Record record;
    for (const Field &field : kFields) {
        const size_t pos = static_cast<size_t>(field.expected);
        EXPECT_EQ(test_sysinfo_get(record.bytes, field.position), record.bytes[pos]) << field.name;
        record.bytes[pos] = 0xA5;
        EXPECT_EQ(test_sysinfo_get(record.bytes, field.position), 0xA5) << field.name;
        record.bytes[pos] = 0x00;
        EXPECT_EQ(test_sysinfo_get(record.bytes, field.position), 0x00) << field.name;
        record.bytes[pos] = 0xFF; // unsigned: 255, not -1
        EXPECT_EQ(test_sysinfo_get(record.bytes, field.position), 255) << field.name;
    }
}

TEST(Part_1_6_SysInfo, SysinfoSetWritesExactlyTheFieldsByteAndNoOther)
{
    for (const Field &field : kFields) {
        Record record;
        const Record original;
        const unsigned char value = static_cast<unsigned char>(~original.bytes[field.expected]);
        test_sysinfo_set(record.bytes, field.position, value);
        for (size_t i = 0; i < kRecordSize; i++) {
            const unsigned char want = (i == static_cast<size_t>(field.expected)) ? value : original.bytes[i];
            ASSERT_EQ(record.bytes[i], want) << field.name << ", byte " << i;
        }
    }
}

TEST(Part_1_6_SysInfo, TheSimulatedHostKeepsItsFieldsAtTheSamePositions)
{
    sim_host_reset();
    for (const Field &field : kFields) {
        const uint8_t value = static_cast<uint8_t>(field.expected & 0xFF);
        ASSERT_EQ(sim_host_set_field(static_cast<size_t>(field.expected), value), 0) << field.name;
        EXPECT_EQ(test_sysinfo_get(GetSysInfo(), field.position), value) << field.name;
        EXPECT_EQ(sim_host_sysinfo()[field.expected], value) << field.name;
    }
}

} // namespace
