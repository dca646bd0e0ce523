# One interface target carries the warnings and instrumentation of every target of this project.
add_library(tessel_compile INTERFACE)
target_compile_options(tessel_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
  -Wcast-qual -Wundef)
# g++ 12 sees overlaps in concatenated strings where there are none (GCC bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tessel_compile INTERFACE -Wno-restrict)
endif()
if(TESSEL_WERROR)
  target_compile_options(tessel_compile INTERFACE -Werror)
endif()
if(TESSEL_SANITIZE)
  target_compile_options(tessel_compile INTERFACE -fsanitize=${TESSEL_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(tessel_compile INTERFACE -fsanitize=${TESSEL_SANITIZE})
  if(TESSEL_SANITIZE MATCHES "undefined")
    target_compile_options(tessel_compile INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()
# What is built does not tell where, except to a debugger.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
endif()
if(TESSEL_COVERAGE)
  target_compile_options(tessel_compile INTERFACE --coverage -fprofile-update=atomic)
  add_library(tessel_ending STATIC ${PROJECT_SOURCE_DIR}/tests/coverage/ending.c)
  target_link_libraries(tessel_compile INTERFACE tessel_ending)
  target_link_options(tessel_compile INTERFACE --coverage LINKER:--wrap=_exit,--wrap=kill,--wrap=raise,-u,__wrap__exit)
endif()
