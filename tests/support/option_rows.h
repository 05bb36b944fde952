// Command lines and what is wrong with them.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace vantor {

inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

struct OptionRow {
    const char* arguments; ///< parted by blanks
    const char* complaint; ///< the message; empty when nothing is wrong
};

inline constexpr char kUninstallAlone[] = "/uninstall must be the only option set.";
inline constexpr char kCleanStateAlone[] = "/cleanstate must be the only option set.";
inline constexpr char kCountAlone[] = "/periodicruncount can only have proxy/hcmode settings.";
inline constexpr char kStatusNeeded[] = "/datupdatestatus=<number> is mandatory if /hcmode=postdatupdate ";
inline constexpr char kDelayMisplaced[] = "/delaypostdat=<number> can only be used with /hcmode=postdatupdate ";
inline constexpr char kServerAndPort[] = "/server and /port must be specified together";

inline constexpr OptionRow kOptionRows[] = {
    {"", ""},
    {"/uninstall /verbose", ""},
    {"/uninstall /test", kUninstallAlone},
    {"/cleanstate /uninstall", kUninstallAlone},
    {"/cleanstate", ""},
    {"/cleanstate /datupdatestatus=0", kCleanStateAlone},
    {"/periodicruncount=3 /test /hcmode=periodic /server=p /port=1 /username= /password= /domain=d /principal=p /target=t",
     ""},
    {"/periodicruncount=0 /resttest", kCountAlone},
    {"/periodicruncount=0 /continue", kCountAlone},
    {"/periodicruncount=0 /datver=1.2", kCountAlone},
    {"/periodicruncount=254 /delaypostdat=1", kCountAlone},
    {"/periodicruncount=255 /resttest", ""},
    {"/periodicruncount=256", "Overflow in CovertToUnsigned"},
    {"/periodicruncount=1x", "Non digit in CovertToUnsigned"},
    {"/periodicruncount=-1", "Non digit in CovertToUnsigned"},
    {"/port=99999999999999999999", "stoull argument out of range"},
    {"/port=18446744073709551615", "Overflow in CovertToUnsigned"},
    {"/port", "Malformed command line argument: '/port' Expected /key=value"},
    {"/Port=", "Malformed command line argument: '/Port=' Expected /key=value"},
    {"/username", "Malformed command line argument: '/username' Expected /key=value"},
    {"/hcmode=Periodic", "/hcmode must be {predatupdate|postdatupdate|periodic}: Periodic"},
    {"/HCMODE=predatupdat", "/hcmode must be {predatupdate|postdatupdate|periodic}: predatupdat"},
    {"/hcmode=\xC3\xBC", "/hcmode must be {predatupdate|postdatupdate|periodic}: \xC3\xBC"},
    {"/hcmode=postdatupdate", kStatusNeeded},
    {"/hcmode=postdatupdate /datupdatestatus=-128", ""},
    {"/datupdatestatus=-129", "Underflow in CovertToSigned"},
    {"/datupdatestatus=128", "Overflow in CovertToSigned"},
    {"/datupdatestatus=+1", "Non digit in CovertToSigned"},
    {"/datupdatestatus=1-1", "invalid stoll argument"},
    {"/datupdatestatus=-", "invalid stoll argument"},
    {"/datupdatestatus=-99999999999999999999", "stoll argument out of range"},
    {"/delaypostdat=1", kDelayMisplaced},
    {"/delaypostdat=1 /hcmode=periodic", kDelayMisplaced},
    {"/delaypostdat=0", ""},
    {"/delaypostdat=65536", "Overflow in CovertToUnsigned"},
    {"/server=p", kServerAndPort},
    {"/port=1", kServerAndPort},
    {"/port=0 /hcmode=predatupdate", ""},
    {"/hcmode=periodic /server=p /datver=x", kServerAndPort},
    {"/tests /bogus=1 test", ""},
};

} // namespace vantor
