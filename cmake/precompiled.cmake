# Headers that most sources of a target include are read once. This saves time only: every source still includes what it uses, which
# tools/analyse checks without them. -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON does without.
set(vantor_standard_headers <algorithm> <array> <chrono> <cstdint> <memory> <optional> <span> <stdexcept> <string> <string_view>
    <utility> <vector>)

# vantor_precompile(TARGET HEADER...): the target's sources begin with the standard library's common headers and these.
function(vantor_precompile target)
    target_precompile_headers(${target} PRIVATE ${vantor_standard_headers} ${ARGN})
endfunction()
