#include "run/scheduling.h"

#include "log_capture.h"
#include "run/option_error.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <thread>

namespace vantor {
namespace {

/// Runs on a thread of its own, whose COM state is its own, too.
template <typename Function>
void OnNewThread(Function function)
{
    std::thread(function).join();
}

TEST(Scheduling, LeavesComAsItWasAlsoWhenItThrows)
{
    OnNewThread([] {
        const LogCapture log;
        EXPECT_THROW(DoScheduling({.periodicRunCount = 8}), OptionError);
        EXPECT_TRUE(log.Has("TRACE: Leaving DoScheduling"));
        EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); // nobody is in another apartment
        ::CoUninitialize();
    });
}

TEST(Scheduling, GoesOnWhereComIsInitialisedOtherwiseAndDoesNotEndIt)
{
    OnNewThread([] {
        ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        const LogCapture log;
        DoScheduling({});
        EXPECT_TRUE(log.Has(" WARN: CoInitialize failed."));
        EXPECT_TRUE(log.Has(" WARN: Failed to delete \\Quillon\\Quillon DAT Built in test the scheduled task: "
                            "0x80070003"));
        EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE); // still initialised
        ::CoUninitialize();
        ::CoUninitialize();
    });
}

} // namespace
} // namespace vantor
