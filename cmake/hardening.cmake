# What the compiler and the linker do against faults that an attacker could use, and against telling where the program
# was built. tools/check-binary looks for all of it in the mingw build's program.
if(MINGW)
    # Checked accesses: canaries on stacks with arrays, the C library's bounded calls, the C++ library's assertions.
    # Canaries and bounded calls need libssp; it is linked in like the rest of the runtime.
    add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS)
    add_link_options(-fstack-protector-strong)
    # The linker's presets today, said aloud: data is no code, and the program lies anywhere in 64 bits.
    add_link_options(-Wl,--nxcompat,--dynamicbase,--high-entropy-va)
    # Paths within the source tree only, in the debug information too; the toolchain's own headers without their folder.
    add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=" "-fmacro-prefix-map=/usr/lib/gcc/=")
elseif(MSVC)
    add_compile_options(/sdl /guard:cf)
    add_link_options(/guard:cf /HIGHENTROPYVA /DYNAMICBASE /NXCOMPAT "/PDBALTPATH:%_PDB%")
endif()
