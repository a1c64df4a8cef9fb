# The target api_reference: the reference of the public headers, in html/ of the build folder. A public
# declaration without a comment is an error, and so is every warning.

optional_component(VANTRIC_BUILD_API_REFERENCE "the API reference" PACKAGES Doxygen INSTALL_HINT "doxygen")
if(VANTRIC_WITH_API_REFERENCE)
    configure_file(docs/api-reference/Doxyfile.in Doxyfile @ONLY)
    add_custom_target(api_reference
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/html
        COMMAND ${DOXYGEN_EXECUTABLE} ${PROJECT_BINARY_DIR}/Doxyfile
        COMMENT "Reading the public headers"
        VERBATIM)
endif()
