# Builds an example in a project that has this tree inside and its own ideas: what "Install" means,
# that sources are compiled together, that all is hidden. It gets the library and nothing else, and may
# put an archive into a module.
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)
set(outside ${FOLDER}/subproject)
set(flavour_static OFF)
set(flavour_shared ON)
file(REMOVE_RECURSE ${outside})
file(WRITE ${outside}/cmake/Install.cmake "message(FATAL_ERROR \"included by another project\")\n")
file(WRITE ${outside}/module.c "
#include <Vantric/ModemClientC.h>
VANTRIC_EXPORT bool start(void) { return modemClientConnect(modemClientCreate()); }
")
file(WRITE ${outside}/CMakeLists.txt "
cmake_minimum_required(VERSION 3.25)
project(Outside LANGUAGES C CXX)
enable_testing()
list(APPEND CMAKE_MODULE_PATH \${PROJECT_SOURCE_DIR}/cmake)
macro(find_package name)
    if(NOT \${name} STREQUAL Threads)
        message(FATAL_ERROR \"\${name} is needed by a component that is off\")
    endif()
    _find_package(\${ARGV})
endmacro()
add_subdirectory(${SOURCE} vantric)
add_executable(print_status ${SOURCE}/examples/print_status.c)
add_library(module MODULE module.c)
target_link_libraries(print_status PRIVATE Vantric::vantric)
target_link_libraries(module PRIVATE Vantric::vantric)
")
run(${CMAKE_COMMAND} -S ${outside} -B ${outside}/build ${same_compilers}
    -D BUILD_SHARED_LIBS=${flavour_${FLAVOUR}} -D CMAKE_CXX_VISIBILITY_PRESET=hidden -D CMAKE_UNITY_BUILD=ON
    -D CMAKE_UNITY_BUILD_BATCH_SIZE=0)
run(${CMAKE_COMMAND} --build ${outside}/build)
run(${CMAKE_COMMAND} --install ${outside}/build --prefix ${outside}/prefix)

file(GLOB_RECURSE gifts ${outside}/prefix/* ${outside}/build/bin/* ${outside}/build/vantric/bin/* ${outside}/build/CPackConfig.cmake)
execute_process(COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${outside}/build --show-only
    OUTPUT_VARIABLE tests COMMAND_ERROR_IS_FATAL ANY)
if(gifts OR NOT tests MATCHES "Total Tests: 0")
    message(FATAL_ERROR "The outer project got what it did not ask for: ${gifts}\n${tests}")
endif()
