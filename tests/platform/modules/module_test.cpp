#include "platform/modules/module.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(SystemModuleTest, NamesTheFirstThingThatIsMissing)
{
    SystemModule kernel(L"kernel32.dll");
    const ModuleFunction<decltype(::GetTickCount64)> tickCount(kernel, "GetTickCount64");
    EXPECT_EQ(kernel.FindMissing(), "");
    EXPECT_LE(tickCount(), ::GetTickCount64());

    SystemModule older(L"kernel32.dll");
    const ModuleFunction<decltype(::GetTickCount64)> known(older, "GetTickCount64");
    const ModuleFunction<decltype(::GetTickCount64)> unknown(older, "NoSuchFunction");
    EXPECT_EQ(older.FindMissing(), "kernel32.dll, function NoSuchFunction: error 127");
    EXPECT_EQ(SystemModule(L"no_such.dll").FindMissing(), "no_such.dll: error 126");
}

} // namespace vantor
