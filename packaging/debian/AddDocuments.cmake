# Adds copyright and changes, and compresses manual pages, as Debian asks. Run by cpack between
# installing and packing: each component lies in a folder of its own then.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} component_upper)
    set(folder
        ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/doc/${CPACK_DEBIAN_${component_upper}_PACKAGE_NAME})
    file(COPY ${CPACK_VANTRIC_DEBIAN_FOLDER}/copyright DESTINATION ${folder})
    file(GLOB_RECURSE pages ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/man/*)
    # "-n": no name and time in the compressed file, so that packages can be made again the same.
    execute_process(
        COMMAND gzip -9 -n -c ${CPACK_VANTRIC_DEBIAN_FOLDER}/changelog
        OUTPUT_FILE ${folder}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
    if(pages)
        execute_process(COMMAND gzip -9 -n ${pages} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
