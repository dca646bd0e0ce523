# What makes a fault of memory end the program and not serve an attacker, in every build but Debug. Sanitizers and
# coverage have means of their own, or are disturbed by these.
if(CMAKE_BUILD_TYPE STREQUAL "Debug" OR TESSEL_SANITIZE OR TESSEL_COVERAGE)
  return()
endif()

include(CheckCXXCompilerFlag)
include(CheckPIESupported)
set(CMAKE_REQUIRED_QUIET ON)
check_pie_supported(LANGUAGES C CXX)
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  string(MAKE_C_IDENTIFIER "TESSEL_HAS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known}) # the last one is for x86 alone
  if(${known})
    add_compile_options(${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_QUIET)

# One level may be given from outside already; what is compiled without optimisation takes it off again.
add_compile_options("SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
add_compile_definitions(_GLIBCXX_ASSERTIONS)
add_link_options(LINKER:-z,relro,-z,now LINKER:--as-needed)
