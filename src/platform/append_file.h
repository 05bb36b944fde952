// A file to which whole texts are appended.
#pragma once

#include "platform/owner.h"

#include <string>
#include <string_view>

namespace vantor {

/// Every text goes to the end of the file in one write, so that lines of several processes do not tear one another.
/// Others may read and write the file meanwhile.
class AppendFile {
public:
    /// Opens the file, creating it if absent; what it holds is kept. Check IsOpen afterwards.
    explicit AppendFile(const std::wstring& path);

    bool IsOpen() const { return static_cast<bool>(m_handle); }

    /// Appends the text as it stands. False when Windows did not write all of it.
    bool Append(std::string_view text) const;

private:
    FileHandle m_handle;
};

} // namespace vantor
