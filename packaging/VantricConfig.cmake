# find_package(Vantric) gives the target Vantric::vantric.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/VantricTargets.cmake)

# There are no components to ask for.
foreach(component IN LISTS Vantric_FIND_COMPONENTS)
    if(Vantric_FIND_REQUIRED_${component})
        set(Vantric_FOUND FALSE)
        set(Vantric_NOT_FOUND_MESSAGE "Vantric has no component ${component}.")
    endif()
endforeach()
