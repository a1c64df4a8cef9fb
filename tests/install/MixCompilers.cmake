# An archive of one compiler's small build goes into a program of the other's.
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)
set(mixed ${FOLDER}/mixed)
file(REMOVE_RECURSE ${mixed})
set(gcc -D CMAKE_C_COMPILER=gcc -D CMAKE_CXX_COMPILER=g++)
set(clang -D CMAKE_C_COMPILER=clang -D CMAKE_CXX_COMPILER=clang++)
foreach(pair "gcc;clang" "clang;gcc")
    list(GET pair 0 library)
    list(GET pair 1 consumer)
    run(${CMAKE_COMMAND} -S ${SOURCE} -B ${mixed}/${library} ${common} ${${library}}
        -D CMAKE_BUILD_TYPE=MinSizeRel -D VANTRIC_SMALL=ON -D CMAKE_INSTALL_LIBDIR=lib -D VANTRIC_BUILD_TESTS=OFF
        -D VANTRIC_BUILD_PROGRAM=OFF -D VANTRIC_BUILD_SIMULATOR=OFF -D VANTRIC_BUILD_BENCHMARKS=OFF)
    run(${CMAKE_COMMAND} --build ${mixed}/${library})
    run(${CMAKE_COMMAND} --install ${mixed}/${library} --prefix ${mixed}/${library}/prefix)
    run(${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${mixed}/${library}-${consumer} ${common} ${${consumer}}
        -D CMAKE_PREFIX_PATH=${mixed}/${library}/prefix)
    run(${CMAKE_COMMAND} --build ${mixed}/${library}-${consumer})
endforeach()
