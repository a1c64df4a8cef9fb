# What is installed, in three components:
#   runtime      the shared library (when there is one), vantricprobe and its manual page
#   development  headers, what to link with, how find_package() and pkg-config find it, manual pages
#                and examples
#   simulator    vantricsim, its scenarios and its manual page
#   companion    vantricctl and its manual page

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# install_for(COMPONENT PACKAGE arguments of install() ...)
#
# A component may be spread over several Debian packages; what PACKAGE names has a component of its
# own, which only making the packages looks at.
macro(install_for component package)
    install(${ARGN} COMPONENT ${component})
    if(NOT ${component} STREQUAL ${package})
        install(${ARGN} COMPONENT ${package} EXCLUDE_FROM_ALL)
    endif()
endmacro()

set(programs "")
if(VANTRIC_WITH_PROGRAM)
    list(APPEND programs vantricprobe)
endif()
if(VANTRIC_WITH_SIMULATOR)
    list(APPEND programs vantricsim)
endif()
if(VANTRIC_WITH_CTL)
    list(APPEND programs vantricctl)
endif()

# Programs find the shared library beside them, wherever the tree is installed, unless its folder is
# named from the root. Packages need no such path: theirs is the system's.
if(BUILD_SHARED_LIBS AND programs)
    set(run_path ${CMAKE_INSTALL_LIBDIR})
    if(NOT IS_ABSOLUTE "${run_path}")
        file(RELATIVE_PATH run_path /${CMAKE_INSTALL_BINDIR} /${run_path})
        string(PREPEND run_path "$ORIGIN/")
    endif()
    set_target_properties(${programs} PROPERTIES INSTALL_RPATH "${run_path}")
endif()

# Headers, archive and the link to develop with belong to one component each; the shared library
# itself is also that of a package.
install(TARGETS vantric EXPORT VantricTargets
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS COMPONENT development)
install(TARGETS vantric LIBRARY COMPONENT library NAMELINK_SKIP EXCLUDE_FROM_ALL)
if(VANTRIC_WITH_PROGRAM)
    install_for(runtime vantricprobe TARGETS vantricprobe RUNTIME)
endif()
if(VANTRIC_WITH_SIMULATOR)
    install(TARGETS vantricsim RUNTIME COMPONENT simulator)
    install(DIRECTORY sim/scenarios
        DESTINATION ${CMAKE_INSTALL_DATADIR}/vantric COMPONENT simulator)
endif()
if(VANTRIC_WITH_CTL)
    install(TARGETS vantricctl RUNTIME COMPONENT companion)
endif()
add_subdirectory(packaging)

# For consumers that use CMake.
set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Vantric)
install(EXPORT VantricTargets NAMESPACE Vantric:: DESTINATION ${config_folder} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VantricConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES packaging/VantricConfig.cmake ${PROJECT_BINARY_DIR}/VantricConfigVersion.cmake
    DESTINATION ${config_folder} COMPONENT development)

# For all others. The file finds its prefix from where it lies, so that an installed tree can be moved;
# not so when its folder is named from the root.
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(pkgconfig_prefix ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE "${pkgconfig_folder}")
    file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_folder} /)
    set(pkgconfig_prefix "\${pcfiledir}/${prefix_from_pkgconfig}")
endif()
set(pkgconfig_libraries "\${prefix}")
cmake_path(APPEND pkgconfig_libraries "${CMAKE_INSTALL_LIBDIR}")
set(pkgconfig_headers "\${prefix}")
cmake_path(APPEND pkgconfig_headers "${CMAKE_INSTALL_INCLUDEDIR}")
# A C compiler must be told of the C++ library inside a static one.
set(static_libraries "")
if(NOT BUILD_SHARED_LIBS)
    set(static_libraries " -lstdc++ -lm -pthread")
endif()
configure_file(packaging/vantric.pc.in vantric.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vantric.pc DESTINATION ${pkgconfig_folder} COMPONENT development)
