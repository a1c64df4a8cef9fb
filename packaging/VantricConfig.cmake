# find_package(Vantric) gives the target Vantric::vantric.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/VantricTargets.cmake)
