# Builds the examples against the installed tree: with CMake, with make and pkg-config, and one of them
# in a project that knows C alone.
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)
set(prefix ${FOLDER}/prefix/all)
file(REMOVE_RECURSE ${FOLDER}/find_package ${FOLDER}/pkg_config ${FOLDER}/in_c)
run(${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${FOLDER}/find_package ${same_compilers}
    -D CMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${FOLDER}/find_package)

file(MAKE_DIRECTORY ${FOLDER}/pkg_config)
set(ENV{PKG_CONFIG_LIBDIR} ${prefix}/lib/pkgconfig)
run(${MAKE} -C ${SOURCE}/examples BUILD=${FOLDER}/pkg_config PKG_CONFIG=${PKG_CONFIG}
    CC=${C_COMPILER} CXX=${CXX_COMPILER} LDFLAGS=-Wl,-rpath,${prefix}/lib)

file(WRITE ${FOLDER}/in_c/CMakeLists.txt "
cmake_minimum_required(VERSION 3.25)
project(InC LANGUAGES C)
find_package(Vantric 1.0 REQUIRED)
add_executable(print_status ${SOURCE}/examples/print_status.c)
target_link_libraries(print_status PRIVATE Vantric::vantric)
")
run(${CMAKE_COMMAND} -S ${FOLDER}/in_c -B ${FOLDER}/in_c/build ${same_compilers} -D CMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${FOLDER}/in_c/build)
