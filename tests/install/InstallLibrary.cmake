# Builds and installs one flavour of the library and compares the installed files, component by
# component, with the list in packaging. The static flavour is the small one that a release ships.
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)
file(REMOVE_RECURSE ${FOLDER}/prefix)
set(flavour_static -D CMAKE_BUILD_TYPE=MinSizeRel -D VANTRIC_SMALL=ON)
set(flavour_shared -D CMAKE_BUILD_TYPE=Debug -D BUILD_SHARED_LIBS=ON)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER}/build ${same_compilers} ${flavour_${FLAVOUR}}
    -D CMAKE_INSTALL_LIBDIR=lib
    -D VANTRIC_BUILD_TESTS=OFF -D VANTRIC_BUILD_SIMULATOR=OFF -D VANTRIC_BUILD_CTL=OFF -D VANTRIC_BUILD_BENCHMARKS=OFF)
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
