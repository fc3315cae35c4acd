# The reference of the SDK. Where Doxygen is not there, there is no target.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
    set(TESSIO_DOCS_DIR ${PROJECT_BINARY_DIR}/docs)
    set(TESSIO_DOCS_WARN FAIL_ON_WARNINGS)
    configure_file(Docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E make_directory ${TESSIO_DOCS_DIR}
        COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile
        COMMENT "Reference of the SDK in ${TESSIO_DOCS_DIR}"
        VERBATIM)
endif()
