#include "health/tracing/trace_properties.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <cstring>

namespace vantor {
namespace {

/// A number in the block that Windows is given.
template <typename Number>
Number At(const TraceProperties& trace, std::size_t offset)
{
    Number number{};
    std::memcpy(&number, reinterpret_cast<const char*>(&trace) + offset, sizeof(number));
    return number;
}

TEST(TraceProperties, AreLaidOutAsWindowsReadsThem)
{
    const std::wstring file = L"C:\\x\\scupdateETL_1.log";
    const struct {
        std::size_t offset;
        ULONG current, old; ///< from Windows version 6 on, and before
    } kFields[] = {
        // Wnode's sizes and clock, buffers, MaximumFileSize, LogFileMode, offsets of the file's and the session's name
        {0, 4224, 4224}, {40, 1, 2},      {44, 0x20000, 0x20000}, {48, 1024, 1024}, {52, 256, 256},
        {56, 276, 276},  {60, 10240, 10}, {64, 0x2001, 1},        {112, 120, 120},  {116, 2168, 2168},
    };
    const auto current = MakeTraceProperties(file, true);
    const auto old = MakeTraceProperties(file, false);
    ASSERT_TRUE(current && old);
    for (const auto& field : kFields) {
        EXPECT_EQ(At<ULONG>(*current, field.offset), field.current) << field.offset;
        EXPECT_EQ(At<ULONG>(*old, field.offset), field.old) << field.offset;
    }
    wchar_t guid[64];
    ::StringFromGUID2(At<GUID>(*current, 24), guid, 64);
    EXPECT_STREQ(guid, L"{D67AAF49-A12E-4ACB-A2B0-F92304295DE3}");
    EXPECT_EQ(reinterpret_cast<const wchar_t*>(&*current) + 120 / 2, file);
    EXPECT_EQ(reinterpret_cast<const wchar_t*>(&*current) + 2168 / 2, std::wstring(L"scupdateLogger"));
    EXPECT_TRUE(MakeTraceProperties(std::wstring(1023, L'x'), true));
    EXPECT_FALSE(MakeTraceProperties(std::wstring(1024, L'x'), true));
    EXPECT_TRUE(IsWindowsVersion6());
}

} // namespace
} // namespace vantor
