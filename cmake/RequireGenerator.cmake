# Before project(): the presets build with Ninja, and CMake's own words do not say what to install.
if(CMAKE_GENERATOR MATCHES "Ninja")
    find_program(CMAKE_MAKE_PROGRAM NAMES ninja-build ninja samu)
    if(NOT CMAKE_MAKE_PROGRAM)
        message(FATAL_ERROR "The build needs ninja: run 'apt-get install ninja-build' or choose another generator with -G.")
    endif()
endif()
