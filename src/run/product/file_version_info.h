// Version resources of executables and modules.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// One file's version resource. The order of the operations is part of the interface, which others reach through
/// NewFileVersionInfo.
class FileVersionInfo {
public:
    /// Reads a text of the resource, such as "CompanyName", in the chosen translation; false when it has none.
    virtual bool QueryValue(const wchar_t* name, std::wstring& value) = 0;

    /// The raw version block, for VerQueryValueA.
    virtual const void* VersionBlock() = 0;

    /// Destroys the object.
    virtual void Release() = 0;

protected:
    ~FileVersionInfo() = default;
};

/// Reads a file's version resource. Returns 0 and stores the object, to be released by the caller; otherwise returns
/// a Windows error code and leaves out unchanged. Of the resource's translations the first neutral one is chosen, else
/// the first in US English, else the first.
extern "C" __declspec(dllexport) DWORD NewFileVersionInfo(const wchar_t* path, FileVersionInfo** out);

/// The four parts of a fixed file version.
struct FileVersion {
    std::uint16_t major;
    std::uint16_t minor;
    std::uint16_t build;
    std::uint16_t revision;
};

/// The fixed version of a file; nothing if it has no version resource, or if this Windows lacks version.dll.
/// Throws std::runtime_error if the resource has no fixed block of 52 bytes.
std::optional<FileVersion> ReadFileVersion(const std::wstring& path);

} // namespace vantor
