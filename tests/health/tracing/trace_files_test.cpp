#include "health/tracing/trace_files.h"

#include "platform/text/encoding.h"
#include "support/log_capture.h"
#include "support/trace_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vantor {

TEST(UpdaterTracing, KeepsToItsFolderAndNamesTheTraceThatCannotGo)
{
    ScratchFolder scratch;
    ASSERT_EQ(scratch.folder.Hold(), 0u);
    EXPECT_FALSE(::MoveFileW(scratch.path.c_str(), L"moved")); // it is held
    std::filesystem::create_directory(scratch.path / "inner");
    std::ofstream(scratch.path / "inner" / "b.log") << "kept";
    EXPECT_EQ(scratch.folder.Create(L"inner\\a.log"), DWORD{ERROR_CANT_ACCESS_FILE});
    EXPECT_EQ(scratch.folder.Delete(L"inner\\b.log"), DWORD{ERROR_CANT_ACCESS_FILE});
    EXPECT_FALSE(std::filesystem::exists(scratch.path / "inner" / "a.log"));
    EXPECT_TRUE(std::filesystem::exists(scratch.path / "inner" / "b.log"));

    for (wchar_t number = L'0'; number <= L'9'; ++number) {
        EXPECT_EQ(scratch.folder.Create(std::wstring(L"scupdateETL_") + number + L".log"), 0u);
    }
    const auto files = scratch.folder.List();
    ASSERT_EQ(files.size(), 10u);
    const std::wstring oldest = (scratch.path / files[0]).wstring();
    ::SetFileAttributesW(oldest.c_str(), FILE_ATTRIBUTE_READONLY);
    const LogCapture log;
    EXPECT_FALSE(TrimTraceFiles(scratch.folder, files));
    EXPECT_TRUE(log.Has(" WARN: An old trace cannot be deleted: " + ToNarrow(files[0]) + " Error:5"));
    ::SetFileAttributesW(oldest.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(TrimTraceFiles(scratch.folder, files));
    EXPECT_EQ(scratch.folder.List().size(), 9u);
}

} // namespace vantor
