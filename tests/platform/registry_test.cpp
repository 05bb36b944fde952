#include "platform/registry.h"

#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(RegistryKey, ReadsEveryStateOfAValueAlike)
{
    const std::vector<BYTE> mebibyte(1024 * 1024, 'x');
    const std::vector<BYTE> more(1024 * 1024 + 1, 'x');
    const std::optional<std::uint32_t> none;
    const std::wstring wide(512 * 1024, L'\x7878');
    const struct {
        DWORD type;
        std::vector<BYTE> data;
        std::optional<std::uint32_t> number; ///< on a preset of 0x55667788
        std::optional<std::wstring> text;    ///< of at most 8 bytes
        std::optional<std::wstring> whole;
    } kCases[] = {
        {REG_DWORD, {}, 0x55667788, L"", L""},
        {REG_BINARY, {0}, 0x55667700, L"", L""},
        {REG_BINARY, {'1'}, 0x55667731, L"", L""},
        {REG_BINARY, {'1', 0, '2'}, 0x55320031, L"1", L"1"},
        {REG_QWORD, {'1', 0, '2', 0}, 0x00320031, L"12", L"12"},                      // no terminator, another type
        {REG_MULTI_SZ, {'1', 0, 0, 0, '2', 0, 0, 0}, none, L"1", L"1"},               // a terminator within
        {REG_BINARY, {'1', 0, '2', 0, '3', 0, '4', 0}, none, L"1234", L"1234"},       // fills the buffer
        {REG_SZ, {'1', 0, '2', 0, '3', 0, '4', 0, '5'}, none, std::nullopt, L"1234"}, // by one byte too long for it
        {REG_NONE, mebibyte, none, std::nullopt, wide},
        {REG_BINARY, more, none, std::nullopt, std::nullopt},
    };
    ScratchRegistry registry;
    registry.Create(L"key");
    const auto key = RegistryKey::OpenForReading(L"key");
    EXPECT_FALSE(key->QueryDword(L"value") || key->QueryText(L"value", 8) || key->QueryWholeText(L"value"));
    EXPECT_FALSE(key->QueryData(L"value", REG_SZ) || RegistryKey::OpenForReading(L"key\\none"));
    for (const auto& row : kCases) {
        registry.Set(L"key", L"value", row.type, row.data);
        EXPECT_EQ(key->QueryDword(L"value", 0x55667788), row.number) << row.data.size();
        EXPECT_EQ(key->QueryText(L"value", 8), row.text) << row.data.size();
        EXPECT_EQ(key->QueryWholeText(L"value"), row.whole) << row.data.size();
        EXPECT_EQ(key->QueryData(L"value", row.type), row.whole ? std::optional(row.data) : std::nullopt);
        EXPECT_FALSE(key->QueryData(L"value", REG_LINK)) << row.data.size();
    }
    const auto unreadable = RegistryKey::Open(L"key", KEY_SET_VALUE | KEY_WOW64_64KEY);
    EXPECT_FALSE(unreadable->QueryDword(L"value") || unreadable->QueryData(L"value", REG_BINARY));
    EXPECT_EQ(key->SetDword(L"value", 1) + key->DeleteValue(L"value"), 2 * ERROR_ACCESS_DENIED);
}

} // namespace vantor
