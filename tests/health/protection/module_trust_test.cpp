#include "health/protection/module_trust.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

TEST(ModuleTrust, IsForFilesOfThisHostThisPublisherAndTrustedOwners)
{
    constexpr char kPlace[] = "it is no file on a drive of this host";
    constexpr char kOwner[] = "it lies in the current folder and belongs to another user";
    constexpr char kPublisher[] = "its publisher is not this program's";
    const LoaderFacts loader{L"Maker", L"S-1-5-18"};
    const FileFacts file{.isDisk = true, .names = 1, .path = L"\\\\?\\C:\\a.dll", .owner = L"S-1-5-21-1"};
    FileFacts remote = file, ours = file, folder = file, pipe = file;
    remote.path = L"\\\\?\\UNC\\host\\share\\a.dll";
    ours.owner = L"S-1-5-32-544";
    folder.isDirectory = true;
    pipe.isDisk = false;
    const struct {
        ModuleFacts module;
        LoaderFacts loader;
        std::string fault;
    } kCases[] = {
        {{file, L"Maker", false}, loader, ""},
        {{ours, L"Maker", true}, loader, ""},
        {{file, L"Maker", true}, loader, kOwner},
        {{file, L"Maker", true}, {L"Maker", file.owner}, ""},
        {{file, L"Other", false}, loader, kPublisher},
        {{file, L"maker", false}, loader, kPublisher},
        {{file, L"", false}, loader, kPublisher},
        {{file, L"Other", false}, {L"", L"S-1-5-18"}, ""}, // an unsigned program has no publisher to ask for
        {{remote, L"Maker", false}, loader, kPlace},
        {{folder, L"Maker", false}, loader, kPlace},
        {{pipe, L"Maker", false}, loader, kPlace},
    };
    for (const auto& row : kCases) {
        const char* const fault = DescribeModuleFault(row.module, row.loader);
        EXPECT_EQ(fault ? fault : "", row.fault) << &row - kCases;
    }
}

} // namespace
} // namespace vantor
