# What makes a mistake in this program harder to exploit. It costs next to nothing, so that every build has
# it (but for the fortified calls, for which sanitizers have their own): what is tested is what people install.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Needed whatever the compiler: one that lacks it is told so by its own error.
add_compile_options(-fstack-protector-strong)
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)

# Fortified calls need the optimizer; the C library warns where it is off.
string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
set(flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}")
if(NOT QUILLBOX_SANITIZE AND flags MATCHES "-O([1-3sz]|fast)")
    # Some compilers define it by themselves; a second definition would be a warning.
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    set(QUILLBOX_FORTIFIED ON)
endif()

# Only some processors know it, and only their compilers take the option.
check_cxx_compiler_flag(-fcf-protection=full QUILLBOX_HAS_CF_PROTECTION)
if(QUILLBOX_HAS_CF_PROTECTION)
    add_compile_options(-fcf-protection=full)
    # The linker drops the mark of all objects where one of the C library's start files lacks it. Those do
    # nothing that a shadow stack forbids, so that its mark (shstk) is put back. The other one (ibt) says that
    # every place jumped to is a landing place, which the first of them is not on Debian 12.
    check_linker_flag(CXX -Wl,-z,shstk QUILLBOX_HAS_SHADOW_STACK_MARK)
endif()
if(QUILLBOX_HAS_SHADOW_STACK_MARK)
    add_link_options(-Wl,-z,shstk)
endif()
