# Sets same_compilers: what makes a further build use the compilers of this one.
if(TOOLCHAIN)
    set(same_compilers --toolchain ${TOOLCHAIN})
else()
    set(same_compilers -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_CXX_COMPILER=${CXX_COMPILER})
endif()
list(APPEND same_compilers -G ${GENERATOR} -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
