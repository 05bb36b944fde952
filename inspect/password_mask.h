// Keeps the passwords that the program logs in clear from being shown.
#pragma once

#include <string>
#include <string_view>

namespace vantor::inspect {

/// Masks one log's messages, in their order. A password with a blank or a quote comes apart into several arguments: all
/// that follow /password= belong to it, up to the next option of the program.
class PasswordMask {
public:
    /// The message with "***" for each password, and for what may be a part of one.
    std::string Apply(std::string_view message);

private:
    bool m_isInPassword = false; ///< the arguments that follow belong to the password
};

} // namespace vantor::inspect
