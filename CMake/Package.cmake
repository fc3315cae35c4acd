# The Debian packages: the libraries, what is needed to build against them, and the tool.
set(TESSIO_MAINTAINER "TessIO maintainers <maintainers@tessio.example>" CACHE STRING
    "Who answers for the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${TESSIO_MAINTAINER}")
# Each package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE tessio)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What the binaries need is found in them; what the packages need of each other stands here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(version "${CPACK_DEBIAN_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
set(runtime libtessio${TESSIO_SOVERSION})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_MULTIARCH same)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "component I/O library for plug-in hosts
One way to name, open, read, write and persist data for a host application and
its plug-ins: data providers, object records, dictionaries and URIs behind
interfaces that no version breaks.

This package contains the library and its companions.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtessio-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_MULTIARCH same)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${runtime} (= ${version})")
# Only the records library uses these.
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS "libfmt-dev, nlohmann-json3-dev")
set(CPACK_DEBIAN_DEV_DESCRIPTION "component I/O library for plug-in hosts - development files
One way to name, open, read, write and persist data for a host application and
its plug-ins: data providers, object records, dictionaries and URIs behind
interfaces that no version breaks.

This package contains what building hosts and plug-ins takes: headers, links,
and the files by which CMake and pkg-config find them.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tessio-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_MULTIARCH foreign)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime} (= ${version})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "component I/O library for plug-in hosts - command-line tool
The tessio command keeps dictionaries in record files, shows what is in any
record file, and names, reads and copies files the way hosts do.")

# Each package says where it comes from.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(documents ${PROJECT_BINARY_DIR}/debian)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in ${documents}/changelog @ONLY)
execute_process(COMMAND gzip -9nc ${documents}/changelog
    OUTPUT_FILE ${documents}/changelog.Debian.gz
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    OUTPUT_FILE ${documents}/changelog.gz
    COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    install(FILES
        ${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${documents}/changelog.Debian.gz ${documents}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
        COMPONENT ${component})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/${component}.lintian-overrides.in
        ${documents}/${package} @ONLY)
    install(FILES ${documents}/${package}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        COMPONENT ${component})
endforeach()

include(CPack)
