# Adds copyright and changes, and compresses manual pages, as Debian asks. Run by cpack between
# installing and packing: each component lies in a folder of its own then.

# All that is packed has the time of the commit, so that a commit's packages are the same wherever and
# whenever they are made. Without the repository, the environment may name the time.
execute_process(COMMAND git -C ${CPACK_VANTRIC_DEBIAN_FOLDER} log -1 --format=%ct
    OUTPUT_VARIABLE commit_time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(commit_time AND NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    set(ENV{SOURCE_DATE_EPOCH} ${commit_time})
endif()

string(TIMESTAMP VANTRIC_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${CPACK_VANTRIC_DEBIAN_FOLDER}/changelog.in ${CPACK_TEMPORARY_DIRECTORY}/changelog @ONLY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} component_upper)
    set(folder
        ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/doc/${CPACK_DEBIAN_${component_upper}_PACKAGE_NAME})
    file(COPY ${CPACK_VANTRIC_DEBIAN_FOLDER}/copyright DESTINATION ${folder})
    file(GLOB_RECURSE pages ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/man/*)
    # "-n": no name and time in the compressed file, so that packages can be made again the same.
    execute_process(
        COMMAND gzip -9 -n -c ${CPACK_TEMPORARY_DIRECTORY}/changelog
        OUTPUT_FILE ${folder}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
    if(pages)
        execute_process(COMMAND gzip -9 -n ${pages} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
