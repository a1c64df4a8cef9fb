# Builds the examples with make and pkg-config.
file(REMOVE_RECURSE ${FOLDER}/pkg_config)
file(MAKE_DIRECTORY ${FOLDER}/pkg_config)
set(ENV{PKG_CONFIG_LIBDIR} ${FOLDER}/prefix/all/lib/pkgconfig)
execute_process(
    COMMAND ${MAKE} -C ${SOURCE}/examples BUILD=${FOLDER}/pkg_config PKG_CONFIG=${PKG_CONFIG}
        CC=${C_COMPILER} CXX=${CXX_COMPILER} LDFLAGS=-Wl,-rpath,${FOLDER}/prefix/all/lib
    COMMAND_ERROR_IS_FATAL ANY)
