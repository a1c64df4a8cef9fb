# A folder of libraries that is named from the root: programs, pkg-config and CMake find it there.
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)
set(libraries ${FOLDER}/elsewhere/libraries)
file(REMOVE_RECURSE ${FOLDER}/elsewhere)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER}/elsewhere/build ${same_compilers}
    -D CMAKE_BUILD_TYPE=Debug -D BUILD_SHARED_LIBS=ON
    -D CMAKE_INSTALL_PREFIX=${FOLDER}/elsewhere/prefix -D CMAKE_INSTALL_LIBDIR=${libraries}
    -D VANTRIC_BUILD_TESTS=OFF -D VANTRIC_BUILD_SIMULATOR=OFF -D VANTRIC_BUILD_BENCHMARKS=OFF)
run(${CMAKE_COMMAND} --build ${FOLDER}/elsewhere/build)
run(${CMAKE_COMMAND} --install ${FOLDER}/elsewhere/build)
separate_arguments(emulator UNIX_COMMAND "${EMULATOR}")
run(${emulator} ${FOLDER}/elsewhere/prefix/bin/vantricprobe --help)

set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/pkgconfig)
file(MAKE_DIRECTORY ${FOLDER}/elsewhere/pkg_config)
run(${MAKE} -C ${SOURCE}/examples BUILD=${FOLDER}/elsewhere/pkg_config PKG_CONFIG=${PKG_CONFIG}
    CC=${C_COMPILER} CXX=${CXX_COMPILER})
run(${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${FOLDER}/elsewhere/find_package ${same_compilers}
    -D Vantric_DIR=${libraries}/cmake/Vantric)
run(${CMAKE_COMMAND} --build ${FOLDER}/elsewhere/find_package)
