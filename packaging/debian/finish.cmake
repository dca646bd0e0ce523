# Turns the installed components into what Debian expects of a package, before the packages are closed.
cmake_policy(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(names
  runtime ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}
  development ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}
  tools ${CPACK_DEBIAN_TOOLS_PACKAGE_NAME})
while(names)
  list(POP_FRONT names component package)
  set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component})
  set(doc ${root}/usr/share/doc/${package})
  file(MAKE_DIRECTORY ${doc})
  configure_file(${CPACK_TESSEL_DEBIAN_DIR}/changelog ${doc}/changelog.Debian COPYONLY)
  file(COPY ${CPACK_TESSEL_DEBIAN_DIR}/copyright DESTINATION ${doc})
  file(GLOB_RECURSE compressed ${doc}/changelog.Debian ${root}/usr/share/man/*)
  run(gzip -9nf ${compressed})
endwhile()

# The configuration is an administrator's file: it is kept in /etc, where changes to it survive an upgrade. Logs of
# system services belong below /var/log, and nothing is to be written below /usr.
set(runtime ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/runtime)
file(GLOB_RECURSE beside_library ${runtime}/usr/lib/*/Tessel_API.ini)
file(READ ${beside_library} configuration)
string(REPLACE "\n;directory = /var/log/ovra\n" "\ndirectory = /var/log/ovra\n" packaged "${configuration}")
if(packaged STREQUAL configuration)
  message(FATAL_ERROR "Tessel_API.ini has no line \";directory = /var/log/ovra\" to be made effective")
endif()
file(WRITE ${runtime}/etc/ovra/Tessel_API.ini "${packaged}")
file(REMOVE ${beside_library})
file(CREATE_LINK /etc/ovra/Tessel_API.ini ${beside_library} SYMBOLIC)
file(MAKE_DIRECTORY ${runtime}/var/log/ovra)

file(GLOB_RECURSE archives ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/development/usr/lib/*.a)
run(strip --strip-debug --enable-deterministic-archives ${archives})
