# What every target of the project is compiled with. Nothing is set globally.

set(TESSIO_SANITIZE "" CACHE STRING "Sanitizers to build with, as of -fsanitize")
option(TESSIO_WARNINGS_AS_ERRORS "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})

# Where programs and libraries look for libraries: beside themselves, so that the installed tree can be moved.
set(tessio_rpath "$ORIGIN;$ORIGIN/../lib")
if(TESSIO_INSTALL AND NOT CMAKE_INSTALL_LIBDIR STREQUAL "lib")
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    list(APPEND tessio_rpath "$ORIGIN/${libraries}")
endif()
# In the system's own folders no path is needed. The tool runs before it is installed, too, so it is built
# with one.
set(tessio_install_rpath_early ON)
if(TESSIO_DEBIAN)
    set(tessio_rpath "")
    set(tessio_install_rpath_early OFF)
endif()

function(tessio_configure target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    # g++ 12 takes "a" + std::string for an overlapping copy when it optimises.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-Wno-restrict>)
    endif()
    if(TESSIO_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
        ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
        BUILD_WITH_INSTALL_RPATH ${tessio_install_rpath_early}
        INSTALL_RPATH "${tessio_rpath}")
    if(TESSIO_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${TESSIO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${TESSIO_SANITIZE})
    endif()
endfunction()

# The library or a companion: shared, or an archive where TESSIO_STATIC says so. Others know it as
# TessIO::<name>, whether this project is added or installed; of the target's name "Korva" is left out.
function(tessio_add_component target)
    if(TESSIO_STATIC)
        add_library(${target} STATIC ${ARGN})
    else()
        add_library(${target} SHARED ${ARGN})
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    string(REGEX REPLACE "^Korva" "" name ${target})
    add_library(TessIO::${name} ALIAS ${target})
    tessio_configure(${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        LINKER_LANGUAGE CXX
        VERSION ${PROJECT_VERSION}
        SOVERSION ${TESSIO_SOVERSION})
    target_link_libraries(${target} PUBLIC TessIO_SDK)
endfunction()

# The names that a shared library shows to others, under a version that moves with the SONAME. Archives have
# no such list.
function(tessio_export target list)
    if(NOT TESSIO_STATIC)
        set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
        configure_file(${list} ${script} @ONLY)
        set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
        target_link_options(${target} PRIVATE -Wl,--version-script=${script})
    endif()
endfunction()
