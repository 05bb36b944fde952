# Precompiles headers that most sources of a target include. This only saves time: every source still includes what it
# uses, which tools/analyse checks without them. -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON turns it off.
set(vantor_standard_headers <algorithm> <array> <chrono> <cstdint> <memory> <optional> <span> <stdexcept> <string> <string_view>
    <utility> <vector>)

# vantor_precompile(TARGET HEADER...): precompiles the common standard headers and these for the target.
function(vantor_precompile target)
    target_precompile_headers(${target} PRIVATE ${vantor_standard_headers} ${ARGN})
endfunction()
