#include "health/protection/module_trust.h"

namespace vantor {

const char* DescribeModuleFault(const ModuleFacts& module, const LoaderFacts& loader)
{
    if (!module.file.isDisk || module.file.isDirectory || !LocalPath(module.file)) {
        return "it is no file on a drive of this host";
    }
    if (module.isInCurrentFolder && !IsOwnerTrusted(module.file, loader.user)) {
        return "it lies in the current folder and belongs to another user";
    }
    if (!loader.publisher.empty() && module.publisher != loader.publisher) {
        return "its publisher is not this program's";
    }
    return nullptr;
}

} // namespace vantor
