// The rules of the command line, written down a second time, and command lines to try them with.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace vantor {

inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

/// What is wrong with a number: from -128 to 127 when that is the most, otherwise from 0 on. Empty when nothing is.
inline std::string NumberComplaint(const std::string& value, int most)
{
    const bool isSigned = most == 127;
    const std::string name = isSigned ? "CovertToSigned" : "CovertToUnsigned";
    if (value.find_first_not_of(isSigned ? "-0123456789" : "0123456789") != value.npos) {
        return "Non digit in " + name;
    }
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    if (number > (isSigned ? 9.3e18 : 1.9e19) || number < -9.3e18) {
        return isSigned ? "stoll argument out of range" : "stoull argument out of range";
    }
    if (end == value.c_str() || *end != '\0') {
        return "invalid stoll argument";
    }
    return number < -128 ? "Underflow in " + name : number > most ? "Overflow in " + name : "";
}

/// What is wrong with these options, the given ones by name; empty when they may stand together.
inline std::string RuleComplaint(std::map<std::string, std::string> given)
{
    const auto has = [&given](const std::string& name) { return given.contains(name); };
    const std::string mode = has("/hcmode") ? given["/hcmode"] : "periodic";
    const bool afterUpdate = mode == "postdatupdate";
    const std::string rules[] = {
        afterUpdate && !has("/datupdatestatus") ? "/datupdatestatus=<number> is mandatory if /hcmode=postdatupdate "
                                                : "",
        !afterUpdate && has("/delaypostdat") ? "/delaypostdat=<number> can only be used with /hcmode=postdatupdate "
                                             : "",
        has("/server") != has("/port") ? "/server and /port must be specified together" : ""};
    given.erase("/verbose");
    given.erase("/logfile");
    for (const std::string name : {"/uninstall", "/cleanstate"}) {
        if (has(name) && given.size() != 1) {
            return name + " must be the only option set.";
        }
    }
    for (const char* const name :
         {"/uninstall", "/resttest", "/cleanstate", "/continue", "/datver", "/datupdatestatus", "/delaypostdat"}) {
        if (has("/periodicruncount") && has(name)) {
            return "/periodicruncount can only have proxy/hcmode settings.";
        }
    }
    if (mode != "predatupdate" && !afterUpdate && mode != "periodic") {
        return "/hcmode must be {predatupdate|postdatupdate|periodic}: " + mode;
    }
    return !rules[0].empty() ? rules[0] : !rules[1].empty() ? rules[1] : rules[2];
}

/// What is wrong with these arguments as a message; empty when they are valid.
inline std::string Complaint(const std::vector<std::string>& arguments)
{
    std::istringstream table("/uninstall flag /test flag /resttest flag /cleanstate flag /continue flag /verbose flag "
                             "/hcmode text /datver text /logfile text /server text /domain text /principal text "
                             "/target text /username any /password any /datupdatestatus 127 /periodicruncount 255 "
                             "/delaypostdat 65535 /port 65535");
    std::map<std::string, std::string> kinds; // a flag, a text, one that may be empty, or the highest number
    for (std::string name, kind; table >> name >> kind;) {
        kinds[name] = kind;
    }
    std::map<std::string, std::string> given; // what has its preset value is as if it were missing
    for (const std::string& argument : arguments) {
        std::string name = argument.substr(0, argument.find('='));
        std::ranges::transform(name, name.begin(), [](char c) { return c < 'A' || c > 'Z' ? c : char(c | 0x20); });
        const std::string value = argument.substr(std::min(name.size() + 1, argument.size()));
        const std::string kind = kinds[name];
        const bool isMissing = argument.size() == name.size() || (value.empty() && kind != "any");
        if (isMissing && !kind.empty() && kind != "flag") {
            return "Malformed command line argument: '" + argument + "' Expected /key=value";
        }
        const int most = std::atoi(kind.c_str());
        if (const std::string complaint = most != 0 ? NumberComplaint(value, most) : ""; !complaint.empty()) {
            return complaint;
        }
        given.erase(name);
        if (kind == "flag" || (!value.empty() && !kind.empty() && (most < 255 || std::stoi(value) != most % 65535))) {
            given[name] = value;
        }
    }
    return RuleComplaint(given);
}

/// Up to four arguments: valid ones, ones that are nearly so, long ones, and some beyond ASCII.
inline std::vector<std::string> SomeArguments(std::mt19937& random)
{
    static const auto kNames = Words(
        "/uninstall /periodicruncount /test /resttest /cleanstate /continue /hcmode /HCMODE /hcMode /datver /datupdatestatus "
        "/delaypostdat /logfile /verbose /server /Port /userName /PASSWORD /domain /principal /target /tests test / \xC3\xBC");
    static const auto kValues = Words(
        "0 00 1 10 127 128 255 0256 65535 65536 -1 -128 -129 - --1 1-1 +1 0x1 99999999999999999999 -99999999999999999999 "
        "predatupdate postdatupdate periodic Periodic a=b = \xC3\xBC " +
        std::string(32'000, '9') + ' ' + std::string(32'000, 'x'));
    std::vector<std::string> arguments(random() % 5);
    for (std::string& argument : arguments) {
        argument = kNames[random() % kNames.size()];
        argument += random() % 4 == 0 ? "" : '=' + (random() % 20 == 0 ? "" : kValues[random() % kValues.size()]);
    }
    return arguments;
}

} // namespace vantor
