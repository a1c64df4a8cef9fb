# Builds the examples with CMake, from a folder of their own.
include(${CMAKE_CURRENT_LIST_DIR}/SameCompilers.cmake)
file(REMOVE_RECURSE ${FOLDER}/find_package)
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${FOLDER}/find_package ${same_compilers}
        -D CMAKE_PREFIX_PATH=${FOLDER}/prefix/all
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${FOLDER}/find_package COMMAND_ERROR_IS_FATAL ANY)
