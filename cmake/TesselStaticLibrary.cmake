# A static library that shows what the headers of its objects declare, and nothing else: a program may have names of its
# own for everything inside. All objects become one; in it the hidden symbols are local, and no section group is left
# by which a linker would take a program's inline function for one of ours, or ours for the program's.
find_program(TESSEL_LD NAMES ld.bfd ld REQUIRED)
mark_as_advanced(TESSEL_LD)

# NAME: the library. ARGN: the targets whose objects it holds.
function(tessel_add_static_library NAME)
  set(parts)
  foreach(part ${ARGN})
    list(APPEND parts $<TARGET_OBJECTS:${part}>)
    # A unique symbol stays what it is, also where it is hidden: there must be none.
    target_compile_options(${part} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  endforeach()
  set(whole ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.o)
  add_custom_command(OUTPUT ${whole}
    COMMAND ${TESSEL_LD} -r --force-group-allocation -o ${whole} ${parts}
    COMMAND ${CMAKE_OBJCOPY} --localize-hidden ${whole}
    DEPENDS ${parts} COMMAND_EXPAND_LISTS VERBATIM)
  add_library(${NAME} STATIC ${whole})
  set_source_files_properties(${whole} PROPERTIES EXTERNAL_OBJECT TRUE GENERATED TRUE)
  set_target_properties(${NAME} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()
