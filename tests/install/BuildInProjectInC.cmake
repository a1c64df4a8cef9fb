# Builds an example in a project that knows C alone.
include(${CMAKE_CURRENT_LIST_DIR}/SameCompilers.cmake)
file(REMOVE_RECURSE ${FOLDER}/c_project)
file(WRITE ${FOLDER}/c_project/CMakeLists.txt "
cmake_minimum_required(VERSION 3.25)
project(InC LANGUAGES C)
find_package(Vantric 1.0 REQUIRED)
add_executable(print_status ${SOURCE}/examples/print_status.c)
target_link_libraries(print_status PRIVATE Vantric::vantric)
")
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${FOLDER}/c_project -B ${FOLDER}/c_project/build ${same_compilers}
        -D CMAKE_PREFIX_PATH=${FOLDER}/prefix/all
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${FOLDER}/c_project/build COMMAND_ERROR_IS_FATAL ANY)
