#include "run/logging.h"
#include "log_capture.h"

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

TEST_F(LoggingTest, AFileThatDoesNotOpenIsDoneWithout)
{
    VantorLogging logging;
    logging.Write("early\r\n");
    logging.Configure({.logFile = "no such folder\\x.log"});
    logging.Write("late\r\n");
    EXPECT_FALSE(logging.IsActive());
}

TEST_F(LoggingTest, VerboseEchoesEveryLineAsItIs)
{
    ::testing::internal::CaptureStdout();
    {
        VantorLogging logging;
        logging.Write("early\r\n");
        logging.Configure({.verbose = true});
        EXPECT_TRUE(logging.IsActive());
        logging.Write("late\r\n");
    }
    // The capture is read as text: each line's own end becomes one line feed, and none was made two.
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "early\nlate\n");
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
