# The Debian packages:
#   libvantric1     the shared library, when there is one
#   libvantric-dev  headers and what to link with
#   vantricprobe    the test client, with the manual pages
#   vantricsim      the simulated server
#   vantricctl      the scripting companion

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/AddDocuments.cmake)
set(CPACK_VANTRIC_DEBIAN_FOLDER ${PROJECT_SOURCE_DIR}/packaging/debian)

set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION}${prerelease})
set(CPACK_GENERATOR DEB)

# The changelog calls released what the version calls released.
set(newest_section "[${PROJECT_VERSION}]")
set(CPACK_VANTRIC_DISTRIBUTION unstable)
if(prerelease)
    set(newest_section "[Unreleased]")
    set(CPACK_VANTRIC_DISTRIBUTION UNRELEASED)
endif()
file(STRINGS CHANGELOG.md sections REGEX "^## ")
list(GET sections 0 section)
string(FIND "${section}" "## ${newest_section}" position)
if(NOT position EQUAL 0)
    message(FATAL_ERROR "CHANGELOG.md begins with '${section}' and not with ${newest_section}, which version ${CPACK_PACKAGE_VERSION} calls for.")
endif()
set(CPACK_PACKAGE_CONTACT "The vantric team <team@vantric.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Each package has a summary of its own, the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Debian's name for what the compiler compiles for; that of an unknown processor is the compiler's.
separate_arguments(compiler_flags UNIX_COMMAND "${CMAKE_CXX_FLAGS}")
if(CMAKE_CXX_COMPILER_TARGET)
    list(APPEND compiler_flags --target=${CMAKE_CXX_COMPILER_TARGET})
endif()
execute_process(COMMAND ${CMAKE_CXX_COMPILER} ${compiler_flags} -dumpmachine
    OUTPUT_VARIABLE compiled_for OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(compiled_for MATCHES "^arm.*eabihf$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
elseif(compiled_for MATCHES "^arm.*eabi$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armel)
elseif(compiled_for MATCHES "^aarch64-")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
elseif(compiled_for MATCHES "^(x86_64|i.86)-" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
elseif(compiled_for MATCHES "^x86_64-")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
else()
    string(REGEX MATCH "^[^-]+" CPACK_DEBIAN_PACKAGE_ARCHITECTURE "${compiled_for}")
endif()

# By name: the tool that finds dependencies knows the cross compiler's copies of the libraries only
# as packages that no device has.
set(system_libraries "libc6 (>= 2.36), libgcc-s1 (>= 12), libstdc++6 (>= 12)")
set(this_library "libvantric${PROJECT_VERSION_MAJOR} (= ${CPACK_PACKAGE_VERSION})")
set(program_dependencies "${system_libraries}")
set(CPACK_COMPONENTS_ALL development vantricprobe)

if(BUILD_SHARED_LIBS)
    list(APPEND CPACK_COMPONENTS_ALL library)
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libvantric${PROJECT_VERSION_MAJOR})
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "${system_libraries}")
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
    set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "client library of the vantric modem-management server
Reads the state that the server publishes in shared memory and queues commands
for it, from C++ and from C.")
    configure_file(packaging/debian/shlibs.in shlibs @ONLY)
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
        "${PROJECT_BINARY_DIR}/shlibs;${PROJECT_SOURCE_DIR}/packaging/debian/triggers")
    set(program_dependencies "${this_library}, ${system_libraries}")
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${this_library}")
endif()

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvantric-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "development files of the client library of the vantric server
Headers, the link to compile with, and the descriptions that CMake's
find_package() and pkg-config read.")

set(CPACK_DEBIAN_VANTRICPROBE_PACKAGE_NAME vantricprobe)
set(CPACK_DEBIAN_VANTRICPROBE_PACKAGE_DEPENDS "${program_dependencies}")
set(CPACK_DEBIAN_VANTRICPROBE_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_VANTRICPROBE_DESCRIPTION "test client of the vantric modem-management server
Shows the modem's state, switches its connectivity, joins and forgets Wi-Fi
networks, loads configurations, and tells how long each change took.")

if(VANTRIC_WITH_SIMULATOR)
    list(APPEND CPACK_COMPONENTS_ALL simulator)
    set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME vantricsim)
    set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS "${program_dependencies}")
    set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION utils)
    set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "simulated vantric modem-management server
Publishes state and takes commands like the real server, healthy or faulty, so
that clients can be tried and tested without a device.")
endif()

if(VANTRIC_WITH_CTL)
    list(APPEND CPACK_COMPONENTS_ALL companion)
    set(CPACK_DEBIAN_COMPANION_PACKAGE_NAME vantricctl)
    set(CPACK_DEBIAN_COMPANION_PACKAGE_DEPENDS "${program_dependencies}")
    set(CPACK_DEBIAN_COMPANION_PACKAGE_SECTION utils)
    set(CPACK_COMPONENT_COMPANION_DESCRIPTION "scripting companion of the vantric modem-management server
Asks for the modem's state and for changes with finite timeouts, JSON and exit
statuses that scripts can trust, and finds what is wrong with the exchange.")
endif()
include(CPack)
