# What the steps of the install tests share:
#   same_compilers  makes a further build use the compilers of this one
#   run(command...) runs a command and ends the step when it fails
if(TOOLCHAIN)
    set(same_compilers --toolchain ${TOOLCHAIN})
else()
    set(same_compilers -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_CXX_COMPILER=${CXX_COMPILER})
endif()
set(common -G ${GENERATOR} -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
list(APPEND same_compilers ${common})

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
