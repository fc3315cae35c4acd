# What every target of the project is compiled with. Nothing is set globally.

set(TESSIO_SANITIZE "" CACHE STRING "Sanitizers to build with, as of -fsanitize")
option(TESSIO_WARNINGS_AS_ERRORS "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})

function(tessio_configure target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
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
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN;$ORIGIN/../lib")
    if(TESSIO_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${TESSIO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${TESSIO_SANITIZE})
    endif()
endfunction()

# A companion or plug-in: a shared library of the given name and sources.
function(tessio_add_shared target)
    add_library(${target} SHARED ${ARGN})
    tessio_configure(${target})
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1)
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
    target_link_libraries(${target} PUBLIC TessIO_SDK)
endfunction()
