# What makes a fault in the release end the program rather than let a hostile logger or file go on: guarded stacks, checked
# copies, checked jumps, and a table of library functions that is read-only from the start.
if(WIN32 OR SORVANTO_SANITIZE)
    return()
endif()

include(CheckCXXCompilerFlag)
set(hardening -fstack-protector-strong)
# Each for one kind of processor.
foreach(flag -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
        list(APPEND hardening ${flag})
    endif()
endforeach()
target_compile_options(sorvanto_options INTERFACE ${hardening})
# It needs an optimising compiler. Some define it by themselves, at another level.
target_compile_options(sorvanto_options INTERFACE $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=3>)
target_link_options(sorvanto_options INTERFACE -Wl,-z,relro -Wl,-z,now)
