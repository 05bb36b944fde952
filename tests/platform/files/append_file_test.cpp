#include "platform/files/append_file.h"

#include "platform/files/open_file.h"
#include "platform/text/encoding.h"
#include "support/logging_test.h"

#include <aclapi.h>
#include <sddl.h>

namespace vantor {
namespace {

TEST_F(LoggingTest, WhoeverHoldsTheLockForGoodHoldsNobodyUp)
{
    AppendFile log(ToWide(m_path));
    const FileHandle file(::CreateFileA(m_path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr));
    OVERLAPPED range{};
    range.Offset = static_cast<DWORD>(AppendFile::kLockedByte);
    range.OffsetHigh = static_cast<DWORD>(AppendFile::kLockedByte >> 32);
    EXPECT_TRUE(log.Append("early\r\n"));
    constexpr DWORD kFlags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    ASSERT_TRUE(::LockFileEx(file.Get(), kFlags, 0, 1, 0, &range)) << "a line keeps the lock";
    EXPECT_TRUE(log.Append("late\r\n") && log.Append("at once\r\n"));
    EXPECT_EQ(FileText(), "early\r\nlate\r\nat once\r\n");
}

/// The rights of a file as SDDL text.
std::string RightsOf(const std::string& path)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    LPSTR text = nullptr;
    ::GetNamedSecurityInfoA(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr, nullptr,
                            &descriptor);
    ::ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                           &text, nullptr);
    const std::string rights = text ? text : "";
    ::LocalFree(text);
    ::LocalFree(descriptor);
    return rights;
}

TEST_F(LoggingTest, ANewFileIsForAdministratorsAndAnOldOneKeepsItsRights)
{
    constexpr char kEveryone[] = ";;;WD)"; // who Wine says may read what was made without rights of its own
    EXPECT_TRUE(AppendFile(ToWide(m_path)).IsOpen());
    // Of a run that is not elevated, as Wine 10 has it, the file is like any other.
    EXPECT_EQ(RightsOf(m_path).find(kEveryone) == std::string::npos, IsElevated()) << RightsOf(m_path);
    std::remove(m_path.c_str());
    std::ofstream(m_path) << "kept";
    const std::string rights = RightsOf(m_path);
    EXPECT_NE(rights.find(kEveryone), std::string::npos) << rights;
    EXPECT_TRUE(AppendFile(ToWide(m_path)).IsOpen());
    EXPECT_EQ(RightsOf(m_path), rights);
}

TEST_F(LoggingTest, OnlyAPlainFileWithOneNameIsOpened)
{
    const std::wstring pipe = L"\\\\.\\pipe\\" + ToWide(m_path);
    const FileHandle server(::CreateNamedPipeW(pipe.c_str(), PIPE_ACCESS_DUPLEX, PIPE_NOWAIT, 1, 64, 64, 0, nullptr));
    ASSERT_TRUE(server);
    std::ofstream(m_path) << "kept";
    const std::string second = m_path + ".link";
    ASSERT_TRUE(::CreateHardLinkA(second.c_str(), m_path.c_str(), nullptr));
    for (const std::wstring& path :
         {pipe, ToWide(m_path), ToWide(second), std::wstring(L"NUL"), std::wstring(L"C:\\x\\NUL"),
          std::wstring(L"C:\\windows"), std::wstring(L"Z:\\dev\\null")}) {
        EXPECT_FALSE(AppendFile(path).IsOpen()) << ToNarrow(path);
    }
    EXPECT_FALSE(::ConnectNamedPipe(server.Get(), nullptr));
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_PIPE_LISTENING}); // nobody came
    std::remove(second.c_str());
    EXPECT_TRUE(AppendFile(ToWide(m_path)).IsOpen());
    EXPECT_EQ(FileText(), "kept");
}

} // namespace
} // namespace vantor
