# What is installed, where, and in which package: "runtime", "dev" or "tools".
include(CMakePackageConfigHelpers)

foreach(folder INCLUDEDIR LIBDIR BINDIR DATADIR MANDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
        message(FATAL_ERROR "CMAKE_INSTALL_${folder} must be relative, so that the tree can be moved")
    endif()
endforeach()

install(TARGETS TessIO_SDK TessIO KorvaCoreRegistry KorvaCoreString KorvaLogger KorvaFileIO KorvaHost
    EXPORT TessIOTargets
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE COMPONENT dev
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
# Archives leave it to the program to link what they use. Its headers are the project's own.
if(TESSIO_STATIC)
    install(TARGETS tessio_system EXPORT TessIOTargets ARCHIVE COMPONENT dev)
endif()
# find_package(TessIO CONFIG)
set(config ${CMAKE_INSTALL_LIBDIR}/cmake/TessIO)
set(made ${PROJECT_BINARY_DIR}/install)
install(EXPORT TessIOTargets NAMESPACE TessIO:: DESTINATION ${config} COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TessIOConfig.cmake.in ${made}/TessIOConfig.cmake
    INSTALL_DESTINATION ${config}
    NO_SET_AND_CHECK_MACRO)
# Newer versions keep the interface of older ones.
write_basic_package_version_file(${made}/TessIOConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${made}/TessIOConfig.cmake ${made}/TessIOConfigVersion.cmake
    DESTINATION ${config}
    COMPONENT dev)

# Programs that use it need two more libraries, so that they ask for it by name: find_package(TessIO COMPONENTS Records).
if(TARGET tessio_records)
    install(TARGETS tessio_records EXPORT TessIORecords
        ARCHIVE COMPONENT dev
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
    install(EXPORT TessIORecords NAMESPACE TessIO:: DESTINATION ${config} COMPONENT dev)
endif()

# The tool is in a package of its own, and its target is there when that is.
if(TESSIO_BUILD_TOOLS)
    install(TARGETS tessio EXPORT TessIOTools RUNTIME COMPONENT tools)
    install(EXPORT TessIOTools NAMESPACE TessIO:: DESTINATION ${config} COMPONENT tools)

    # What the tool says of itself.
    set(share ${PROJECT_BINARY_DIR}/share)
    set(man ${CMAKE_INSTALL_MANDIR}/man1)
    set(zsh zsh/site-functions)
    install(FILES ${share}/man/man1/tessio.1 DESTINATION ${man} COMPONENT tools)
    if(TESSIO_DEBIAN)
        set(zsh zsh/vendor-completions)
        install(CODE "execute_process(
            COMMAND gzip -9nf \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${man}/tessio.1\"
            COMMAND_ERROR_IS_FATAL ANY)" COMPONENT tools)
    endif()
    install(FILES ${share}/bash-completion/completions/tessio
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT tools)
    install(FILES ${share}/zsh/site-functions/_tessio
        DESTINATION ${CMAKE_INSTALL_DATADIR}/${zsh}
        COMPONENT tools)
    install(FILES ${share}/fish/vendor_completions.d/tessio.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
        COMPONENT tools)
endif()

# pkg-config
set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH tessio_prefix /${pkgconfig} /)
string(REGEX REPLACE "/$" "" tessio_prefix ${tessio_prefix})
set(tessio_linkage shared)
if(TESSIO_STATIC)
    set(tessio_linkage static)
endif()
set(tessio_modules tessio-sdk tessio tessio-host)
if(TARGET tessio_records)
    list(APPEND tessio_modules tessio-records)
endif()
foreach(module IN LISTS tessio_modules)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${tessio_linkage}/${module}.pc.in ${made}/${module}.pc @ONLY)
    install(FILES ${made}/${module}.pc DESTINATION ${pkgconfig} COMPONENT dev)
endforeach()
