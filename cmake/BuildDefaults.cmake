# What every target of the tree shares: output folders, the language, warnings and sanitizers.

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

# Programs find a shared library beside them wherever the tree lies, and are the same bytes everywhere.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# Where GCC can bound a size it copies with a string instruction, whose start takes longer than the whole
# of a short copy by the C library: it doubled the time of an enqueue. Without optimisation it does not,
# and the compile database of that build is read by clang's tools, which do not know the flag.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i.86")
    add_compile_options($<$<NOT:$<CONFIG:Debug>>:-mstringop-strategy=libcall>)
endif()

set(VANTRIC_SANITIZE OFF CACHE STRING "ON: the address and undefined-behaviour sanitizers; thread: the thread sanitizer")
if(VANTRIC_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(VANTRIC_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

option(VANTRIC_COVERAGE "Build for line coverage" OFF)
if(VANTRIC_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

option(VANTRIC_STATIC_PROGRAM "Link vantricprobe wholly statically: one file that needs only the kernel" OFF)
if(VANTRIC_STATIC_PROGRAM AND BUILD_SHARED_LIBS)
    message(FATAL_ERROR "A wholly static vantricprobe has no shared library: drop BUILD_SHARED_LIBS or VANTRIC_STATIC_PROGRAM.")
endif()

option(VANTRIC_SMALL "Link-time optimisation, section garbage collection and a static C++ runtime in programs" OFF)
if(VANTRIC_SMALL)
    set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
    add_compile_options(-ffunction-sections -fdata-sections)
    add_link_options(-Wl,--gc-sections)
    # A program that can be loaded anywhere has two thousand addresses to adjust at its start; packed,
    # their list is 45 KB shorter and start-up does a tenth less. Needs glibc 2.36 where it runs. The
    # linkers of other architectures take the flag with a warning and do nothing.
    include(CheckLinkerFlag)
    check_linker_flag(CXX -Wl,-z,pack-relative-relocs VANTRIC_CAN_PACK_RELOCATIONS)
    if(VANTRIC_CAN_PACK_RELOCATIONS AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i.86")
        add_link_options(-Wl,-z,pack-relative-relocs)
    endif()
endif()
