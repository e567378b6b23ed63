# The root of the repository holds no scenes and nothing that a fuzzer found: what programs write belongs elsewhere.
cmake_minimum_required(VERSION 3.25)

cmake_path(SET root NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../..)
file(GLOB leftovers ${root}/*.oa ${root}/*.ob ${root}/crash-* ${root}/leak-* ${root}/oom-* ${root}/slow-unit-*
    ${root}/timeout-*)
if(leftovers)
    message(FATAL_ERROR "A program left in the repository's root: ${leftovers}")
endif()
