// Version resources of executables and modules.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// One file's version resource. Other modules use it through NewFileVersionInfo, so the order of the virtual functions
/// must not change.
class FileVersionInfo {
public:
    /// Reads a text of the resource, such as "CompanyName", in the chosen translation; false if there is none.
    virtual bool QueryValue(const wchar_t* name, std::wstring& value) = 0;

    /// The raw version block for VerQueryValueA.
    virtual const void* VersionBlock() = 0;

    /// Destroys the object.
    virtual void Release() = 0;

protected:
    ~FileVersionInfo() = default;
};

/// Reads a file's version resource. Returns 0 and stores an object in *out, which the caller must release; on failure
/// returns a Windows error code and leaves *out unchanged. Chooses the resource's first neutral translation, else the
/// first in US English, else the first.
extern "C" __declspec(dllexport) DWORD NewFileVersionInfo(const wchar_t* path, FileVersionInfo** out);

/// The four parts of a fixed file version.
struct FileVersion {
    std::uint16_t major;
    std::uint16_t minor;
    std::uint16_t build;
    std::uint16_t revision;
};

/// The fixed version of a file; std::nullopt if it has no version resource or this system lacks version.dll.
/// Throws std::runtime_error if the resource has no fixed block of 52 bytes.
std::optional<FileVersion> ReadFileVersion(const std::wstring& path);

} // namespace vantor
