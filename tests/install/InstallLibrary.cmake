# Builds and installs one flavour of the library and compares the installed files, component by
# component, with the list in packaging.
file(REMOVE_RECURSE ${FOLDER}/prefix)
if(FLAVOUR STREQUAL "shared")
    set(build_shared ON)
else()
    set(build_shared OFF)
endif()
include(${CMAKE_CURRENT_LIST_DIR}/SameCompilers.cmake)

function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER}/build ${same_compilers}
    -D CMAKE_BUILD_TYPE=Debug -D CMAKE_INSTALL_LIBDIR=lib
    -D BUILD_SHARED_LIBS=${build_shared} -D VANTRIC_BUILD_TESTS=OFF -D VANTRIC_BUILD_SIMULATOR=OFF
    -D VANTRIC_BUILD_BENCHMARKS=OFF)
run(${CMAKE_COMMAND} --build ${FOLDER}/build)
foreach(component runtime development)
    run(${CMAKE_COMMAND} --install ${FOLDER}/build --prefix ${FOLDER}/prefix/${component} --component ${component})
endforeach()
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}/prefix/simulator --component simulator)

# The examples are built against all components together.
run(${CMAKE_COMMAND} --install ${FOLDER}/build --prefix ${FOLDER}/prefix/all)

file(GLOB_RECURSE installed RELATIVE ${FOLDER}/prefix LIST_DIRECTORIES false
    ${FOLDER}/prefix/runtime/* ${FOLDER}/prefix/development/* ${FOLDER}/prefix/simulator/*)
list(SORT installed)
list(JOIN installed "\n" installed)
file(READ ${SOURCE}/packaging/installed-files.${FLAVOUR}.txt expected)
string(STRIP "${expected}" expected)
if(NOT installed STREQUAL expected)
    message(NOTICE "${installed}")
    message(FATAL_ERROR "Installed are these files, not those of packaging/installed-files.${FLAVOUR}.txt.")
endif()
