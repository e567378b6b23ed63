# Holds the includes of the library to its two rules: arrows point one way, accessor -> serialize -> data ->
# foundation, and a public header never includes detail/, which is not installed.
cmake_minimum_required(VERSION 3.25)

cmake_path(SET root NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../..)
set(forbidden_from_foundation "data|serialize|accessor")
set(forbidden_from_data "serialize|accessor")
set(forbidden_from_serialize "accessor")

function(refuse_includes pattern reason)
    foreach(file IN LISTS ARGN)
        file(STRINGS ${root}/${file} lines REGEX "^#include [\"<]${pattern}")
        foreach(line IN LISTS lines)
            message(SEND_ERROR "${file}: ${line}: ${reason}")
        endforeach()
    endforeach()
endfunction()

foreach(folder IN ITEMS foundation data serialize)
    file(GLOB_RECURSE files RELATIVE ${root} ${root}/vumo/${folder}/*.h ${root}/vumo/${folder}/*.cpp)
    refuse_includes("vumo/(${forbidden_from_${folder}})/" "${folder} must not know of that folder" ${files})
endforeach()

file(GLOB public_headers RELATIVE ${root} ${root}/vumo/*.h ${root}/vumo/*/*.h)
refuse_includes(".*detail/" "a public header must not include what is not installed" ${public_headers})
