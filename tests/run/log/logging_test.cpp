#include "run/log/logging.h"
#include "platform/append_file.h"
#include "platform/text.h"
#include "support/log_capture.h"

#include <gtest/gtest.h>

#include <iterator>

namespace vantor {
namespace {

class LoggingTest : public ::testing::Test {
protected:
    LoggingTest() { std::remove(m_path.c_str()); }
    ~LoggingTest() override { std::remove(m_path.c_str()); }

    std::string FileText() const
    {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string m_path = "logging_test_" + std::to_string(::GetCurrentProcessId()) + ".log";
};

TEST_F(LoggingTest, EarlyLinesComeFirstAndTheFileIsAppendedTo)
{
    std::ofstream(m_path, std::ios::binary) << "kept\n";
    {
        VantorLogging logging;
        EXPECT_FALSE(logging.IsActive());
        logging.Write("early\r\n");
        logging.Configure({.logFile = m_path});
        EXPECT_TRUE(logging.IsActive());
        VantorLogging::GetLogger().Write("late\r\n");
        EXPECT_EQ(FileText(), "kept\nearly\r\nlate\r\n"); // readable while it is open
        EXPECT_THROW(logging.Configure({}), std::logic_error);
    }
    EXPECT_THROW(VantorLogging::GetLogger(), std::logic_error);
}

TEST_F(LoggingTest, WhoeverHoldsTheLockForGoodHoldsNobodyUp)
{
    AppendFile log(ToWide(m_path));
    const FileHandle file(::CreateFileA(m_path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr));
    OVERLAPPED range{};
    range.Offset = static_cast<DWORD>(AppendFile::kLockedByte);
    range.OffsetHigh = static_cast<DWORD>(AppendFile::kLockedByte >> 32);
    ASSERT_TRUE(::LockFileEx(file.Get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &range));
    const ULONGLONG begun = ::GetTickCount64();
    EXPECT_TRUE(log.Append("late\r\n") && log.Append("at once\r\n"));
    EXPECT_NEAR(static_cast<double>(::GetTickCount64() - begun), 1.2 * AppendFile::kPatienceMs,
                AppendFile::kPatienceMs / 2.0);
    EXPECT_EQ(FileText(), "late\r\nat once\r\n");
}

TEST(Logging, LinesHaveLevelAndScopeAndLeaveTheLastErrorAlone)
{
    const LogCapture log;
    ::SetLastError(1234);
    {
        const ScopeTrace scope("Something");
        LogWarning("careful");
        LoggerImpl().Log(static_cast<LogLevel>(7), "odd level");
    }
    EXPECT_EQ(::GetLastError(), 1234u);
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{"TRACE: Entering Something", " WARN: careful", "ERROR: odd level",
                                                     "TRACE: Leaving Something"}));
}

} // namespace
} // namespace vantor
