#include "inspect/password_mask.h"

#include "platform/text/lower_case.h"
#include "run/log/log_texts.h"
#include "run/options/options.h"

namespace vantor::inspect {
namespace {

constexpr char kMask[] = "***";

/// Where a message contains a password: after the first text, and before the last occurrence of the second or up to the
/// end.
const struct Secret {
    std::string before; ///< in lower case
    std::string_view behind = {};
} kSecrets[] = {
    {texts::kPasswordOption + std::string("=")},
    {texts::kPasswordField + std::string(" = ")},
    {LowerCase(std::string(texts::kPasswordArgument)) + "="},
    {texts::kPassword, texts::kAuthenticationSchemes},
};

std::string WithoutSecrets(std::string_view message)
{
    std::string result(message);
    std::string lowered = LowerCase(result);
    for (const auto& [before, behind] : kSecrets) {
        const std::size_t found = lowered.find(before);
        if (found == std::string::npos) {
            continue;
        }
        const std::size_t begin = found + before.size();
        const std::size_t end = behind.empty() ? std::string::npos : result.rfind(behind);
        if (begin < result.size() && end != begin) {
            result.replace(begin, end == std::string::npos || end < begin ? std::string::npos : end - begin, kMask);
            lowered = LowerCase(result);
        }
    }
    return result;
}

} // namespace

std::string PasswordMask::Apply(std::string_view message)
{
    constexpr std::string_view kHandling = texts::kHandlingArgument, kUnexpected = texts::kUnexpectedArgument;
    if (message.starts_with(kHandling)) {
        const std::string argument = LowerCase(std::string(message.substr(kHandling.size())));
        if (m_isInPassword && !IsOption(argument)) {
            return texts::kHandlingArgument + std::string(kMask);
        }
        m_isInPassword = argument.starts_with(kSecrets[0].before);
    } else if (message.starts_with(kUnexpected) && m_isInPassword) {
        return texts::kUnexpectedArgument + std::string(kMask);
    } else if (message == texts::kEntering + std::string(texts::kGetConfig)) {
        m_isInPassword = false;
    }
    return WithoutSecrets(message);
}

} // namespace vantor::inspect
