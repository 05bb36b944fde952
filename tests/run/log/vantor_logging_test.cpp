#include "run/log/vantor_logging.h"

#include "support/logging_test.h"

namespace vantor {

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

} // namespace vantor
