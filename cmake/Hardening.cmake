# What makes a fault in memory harder to use, in every program. Beside the sanitizers, which look for such faults
# themselves, it would only hide some.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

function(ambertide_harden target)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "AMBERTIDE_HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has}) # the last two belong to one kind of processor each
    if(${has})
      target_compile_options(${target} INTERFACE ${flag})
    endif()
  endforeach()
  # It takes an optimising build.
  target_compile_options(${target} INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>)
  target_link_options(${target} INTERFACE -Wl,-z,relro,-z,now)
endfunction()
