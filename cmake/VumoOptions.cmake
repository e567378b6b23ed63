# The options of a build; docs/building.md explains them.

# A build for use is what somebody wants who asks for nothing.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

# An option for a part that needs packages: ON insists on them, AUTO leaves the part out where they are missing.
function(vumo_part_option name description)
    set(default OFF)
    if(PROJECT_IS_TOP_LEVEL)
        set(default AUTO)
    endif()
    set(${name} ${default} CACHE STRING "${description}: ON, OFF, or AUTO if its packages are found")
    set_property(CACHE ${name} PROPERTY STRINGS AUTO ON OFF)
endfunction()

# Finds the package, and in it the target, that a part needs; what follows goes to find_package. Ends the part's
# CMakeLists.txt where they are missing and the part's option is AUTO.
macro(vumo_find_package option package target)
    find_package(${package} QUIET ${ARGN})
    if(NOT TARGET ${target})
        if(NOT ${option} STREQUAL "AUTO")
            message(FATAL_ERROR "${option}=${${option}} needs ${target} of the package ${package}, which was not found. "
                "scripts/bootstrap installs it.")
        endif()
        cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME part)
        message(STATUS "Leaving out ${part}: ${target} of the package ${package} was not found")
        return()
    endif()
endmacro()

option(BUILD_SHARED_LIBS "Build vumo as a shared library" ON)
vumo_part_option(VUMO_BUILD_TOOLS "Build the command-line tool")
vumo_part_option(VUMO_BUILD_PYTHON "Build the package for Python")
option(VUMO_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
vumo_part_option(VUMO_BUILD_TESTS "Build the tests")
option(VUMO_BUILD_FUZZERS "Build the fuzz targets with libFuzzer (clang)" OFF)
option(VUMO_BUILD_BENCHMARKS "Build the benchmarks, which compare vumo with other libraries" OFF)
option(VUMO_WARNINGS_AS_ERRORS "Let a warning in vumo's own code fail the build" OFF)
