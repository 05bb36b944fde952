// Hides the passwords that the program logs in clear text.
#pragma once

#include <string>
#include <string_view>

namespace vantor::inspect {

/// Masks the messages of one log, in order. A password with a blank or a quote is split into several arguments, so all
/// arguments after /password= are treated as part of it, up to the next option of the program.
class PasswordMask {
public:
    /// The message with each password, and anything that may be part of one, replaced by "***".
    std::string Apply(std::string_view message);

private:
    bool m_isInPassword = false; ///< the next arguments may belong to the password
};

} // namespace vantor::inspect
