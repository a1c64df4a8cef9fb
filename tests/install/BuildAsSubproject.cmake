# Builds an example in a project that has this tree inside, and its own ideas of what "Install" means.
include(${CMAKE_CURRENT_LIST_DIR}/SameCompilers.cmake)
file(REMOVE_RECURSE ${FOLDER}/subproject)
file(WRITE ${FOLDER}/subproject/cmake/Install.cmake "message(FATAL_ERROR \"included by another project\")\n")
file(WRITE ${FOLDER}/subproject/CMakeLists.txt "
cmake_minimum_required(VERSION 3.25)
project(Outside LANGUAGES C CXX)
enable_testing()
list(APPEND CMAKE_MODULE_PATH \${PROJECT_SOURCE_DIR}/cmake)
add_subdirectory(${SOURCE} vantric)
add_executable(print_status ${SOURCE}/examples/print_status.c)
target_link_libraries(print_status PRIVATE Vantric::vantric)
")
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${FOLDER}/subproject -B ${FOLDER}/subproject/build ${same_compilers}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${CMAKE_COMMAND} --build ${FOLDER}/subproject/build --target print_status COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${FOLDER}/subproject/build --show-only
    OUTPUT_VARIABLE tests COMMAND_ERROR_IS_FATAL ANY)
if(NOT tests MATCHES "Total Tests: 0")
    message(FATAL_ERROR "The outer project got tests that it did not ask for:\n${tests}")
endif()
if(EXISTS ${FOLDER}/subproject/build/CPackConfig.cmake)
    message(FATAL_ERROR "The outer project got packages that it did not ask for.")
endif()
