# Configures vumo as somebody does who asks for nothing, without the packages that only parts of it need; then asks for
# those parts. Holds the pages of the options and of the versions to what CMake knows.
#
# usage: cmake -D build=FOLDER -D generator=GENERATOR -D compiler=COMPILER -P check_options.cmake
cmake_minimum_required(VERSION 3.25)

cmake_path(SET root NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../..)
unset(ENV{CMAKE_BUILD_TYPE})
file(REMOVE_RECURSE ${build})

# Configures, and fails unless it goes as foretold: `result` matches "0" or "1", and the output holds each of the texts.
function(configure_with options result)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -S ${root} -B ${build} -G ${generator} -D CMAKE_CXX_COMPILER=${compiler}
            -D CMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -D CMAKE_DISABLE_FIND_PACKAGE_GTest=ON
            -D CMAKE_DISABLE_FIND_PACKAGE_pybind11=ON ${options}
        RESULT_VARIABLE actual OUTPUT_VARIABLE output ERROR_VARIABLE output)
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    foreach(text IN LISTS ARGN)
        string(FIND "${output}" "${text}" found)
        if(NOT actual EQUAL result OR found EQUAL -1)
            message(SEND_ERROR "With '${options}' cmake gave ${actual} and not \"${text}\":\n${output}")
        endif()
    endforeach()
endfunction()

configure_with("" 0 "Leaving out tools: CLI11::CLI11 of the package CLI11 was not found"
    "Leaving out python: pybind11::headers of the package pybind11 was not found"
    "Leaving out tests: GTest::gmock of the package GTest was not found")
configure_with("-DVUMO_BUILD_TOOLS=ON" 1 "VUMO_BUILD_TOOLS=ON needs CLI11::CLI11 of the package CLI11")
configure_with("-DVUMO_BUILD_TOOLS=OFF;-DVUMO_BUILD_TESTS=ON" 1 "VUMO_BUILD_TESTS=ON needs GTest::gmock of the package")

load_cache(${build} READ_WITH_PREFIX cached_ CMAKE_BUILD_TYPE CMAKE_PROJECT_VERSION)
if(NOT cached_CMAKE_BUILD_TYPE STREQUAL "Release")
    message(SEND_ERROR "A plain build is '${cached_CMAKE_BUILD_TYPE}', not Release")
endif()

file(STRINGS ${root}/CHANGELOG.md section REGEX "^## ${cached_CMAKE_PROJECT_VERSION}( |$)")
if(NOT section)
    message(SEND_ERROR "CHANGELOG.md has no section for version ${cached_CMAKE_PROJECT_VERSION}")
endif()

file(STRINGS ${build}/CMakeCache.txt options REGEX "^(BUILD_SHARED_LIBS|VUMO_[A-Z_]+):(BOOL|STRING)=")
file(READ ${root}/docs/building.md page)
foreach(option IN LISTS options)
    string(REGEX REPLACE ":.*" "" option ${option})
    string(FIND "${page}" "| `${option}` |" found)
    if(found EQUAL -1)
        message(SEND_ERROR "docs/building.md does not explain ${option}")
    endif()
endforeach()
