# Debian packages out of the installed components: see scripts/package.
set(TESSEL_DEBIAN_REVISION 1)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ovra-tessel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Ovra Tessel maintainers <maintainers@example.invalid>")
# Each package has a summary of its own in the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET tesselctl AND TARGET tessel-arraysim)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish.cmake)
set(CPACK_TESSEL_DEBIAN_DIR ${PROJECT_SOURCE_DIR}/packaging/debian)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${TESSEL_DEBIAN_REVISION})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The tools are linked with libraries of the runtime package, of which dpkg has no record yet: its dependency is
# written out below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(this_version "= ${PROJECT_VERSION}-${TESSEL_DEBIAN_REVISION}")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libovra-tessel1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "ca-certificates")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/debian/conffiles ${PROJECT_SOURCE_DIR}/packaging/debian/triggers
  ${PROJECT_SOURCE_DIR}/packaging/debian/postrm ${PROJECT_SOURCE_DIR}/packaging/debian/symbols)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "client library for the Ovra Tessel storage array
Manages the LUNs, snapshots, hosts, initiators, mapping views and ports of an
array over its HTTPS management interface, and makes LUNs and snapshots usable
as local disks.
.
This package holds the shared libraries and the configuration of their logs.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libovra-tessel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libovra-tessel1 (${this_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libjsoncpp-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "client library for the Ovra Tessel storage array (development files)
Manages the LUNs, snapshots, hosts, initiators, mapping views and ports of an
array over its HTTPS management interface, and makes LUNs and snapshots usable
as local disks.
.
This package holds the headers, the static library, and the files by which
CMake and pkg-config find the library. The static library and the REST library
need libjsoncpp-dev to be linked.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ovra-tessel-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_TOOLS_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libovra-tessel1 (${this_version})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "ca-certificates, lsscsi, sg3-utils, multipath-tools, open-iscsi")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "command line and simulator for the Ovra Tessel storage array
tesselctl manages the LUNs, snapshots, hosts, initiators and mapping views of
an array, and attaches LUNs and snapshots to this host as disks.
tessel-arraysim is an array on this machine with the same management
interface, for trials and tests.")

include(CPack)
