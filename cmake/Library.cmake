# The library's targets, and how its folders add their sources to them:
#
#   vantric               what is installed. An archive is plain machine code, which every compiler's
#                         linker takes, for programs as well as for modules
#   vantric_for_programs  what the programs of this tree link: the same, unless an archive is to go into
#                         small programs. Then it is compiled again, to be optimised together with them

function(add_vantric_library target)
    add_library(${target} ${ARGN})
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PUBLIC Threads::Threads)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

find_package(Threads REQUIRED)
add_vantric_library(vantric)
add_library(Vantric::vantric ALIAS vantric)
set_target_properties(vantric PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} POSITION_INDEPENDENT_CODE ON)
set(vantric_source_targets vantric)

if(BUILD_SHARED_LIBS)
    set(version_script ${PROJECT_SOURCE_DIR}/Vantric/vantric.map)
    target_link_options(vantric PRIVATE -Wl,--version-script=${version_script})
    set_target_properties(vantric PROPERTIES LINK_DEPENDS ${version_script})
else()
    set_target_properties(vantric PROPERTIES INTERPROCEDURAL_OPTIMIZATION OFF)
    # A static library has C++ inside, of which a C program's link must be told.
    target_link_libraries(vantric INTERFACE $<$<LINK_LANGUAGE:C>:stdc++> $<$<LINK_LANGUAGE:C>:m>)
endif()

if(VANTRIC_SMALL AND NOT BUILD_SHARED_LIBS)
    add_vantric_library(vantric_for_programs STATIC)
    target_include_directories(vantric_for_programs PUBLIC ${PROJECT_SOURCE_DIR})
    list(APPEND vantric_source_targets vantric_for_programs)
else()
    add_library(vantric_for_programs INTERFACE)
    target_link_libraries(vantric_for_programs INTERFACE vantric)
endif()

# vantric_sources(file...)
function(vantric_sources)
    foreach(target IN LISTS vantric_source_targets)
        target_sources(${target} PRIVATE ${ARGN})
    endforeach()
endfunction()
