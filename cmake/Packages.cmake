# What is installed, in three components, and the Debian package of each.
#   runtime      the shared library (when there is one) and vantricprobe
#   development  headers and what to link with
#   simulator    vantricsim and its scenarios

include(GNUInstallDirs)

install(TARGETS vantric
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
install(TARGETS vantricprobe RUNTIME COMPONENT runtime)
install(DIRECTORY CoreMisc Vantric
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
if(VANTRIC_WITH_SIMULATOR)
    install(TARGETS vantricsim RUNTIME COMPONENT simulator)
    install(DIRECTORY sim/scenarios
        DESTINATION ${CMAKE_INSTALL_DATADIR}/vantric COMPONENT simulator)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The vantric team <vantric@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(VANTRIC_WITH_SIMULATOR)
    list(APPEND CPACK_COMPONENTS_ALL simulator)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()
# By name: the tool that finds dependencies knows the cross compiler's copies of the libraries only
# as packages that no device has.
set(system_libraries "libc6 (>= 2.36), libgcc-s1 (>= 12), libstdc++6 (>= 12)")
set(same_version "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME vantric)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "${system_libraries}")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Client library of the vantric modem-management server and its test client")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME vantric-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "vantric ${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers and link of the client library of the vantric server")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME vantricsim)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS "vantric ${same_version}, ${system_libraries}")
set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "Simulated vantric server, for tests without a device")
include(CPack)
