# Compiler and linker options that make faults harder to exploit and keep build paths out of the program.
# tools/check-binary checks all of them in the mingw build's program.
if(MINGW)
    # Checked accesses: canaries on stacks with arrays, the C library's bounded calls, the C++ library's assertions.
    # Canaries and bounded calls need libssp, which is linked statically like the rest of the runtime.
    add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS)
    add_link_options(-fstack-protector-strong)
    # Today's linker defaults, made explicit: data is not executable, and the program is loaded at random 64-bit
    # addresses.
    add_link_options(-Wl,--nxcompat,--dynamicbase,--high-entropy-va)
    # Only paths relative to the source tree, also in the debug information, and toolchain headers without their folder.
    add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=" "-fmacro-prefix-map=/usr/lib/gcc/=")
elseif(MSVC)
    add_compile_options(/sdl /guard:cf)
    add_link_options(/guard:cf /HIGHENTROPYVA /DYNAMICBASE /NXCOMPAT "/PDBALTPATH:%_PDB%")
endif()
