# Holds the includes of the library to its three rules: arrows point one way, accessor -> serialize -> data ->
# foundation; a public header never includes detail/, which is not installed; foundation/detail serves all folders, any
# other detail/ its own folder.
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

# The tables of data types and of their text forms are rules of the model that the text formats follow; the accessors
# register very many structures at once, and explain what the raw format of structures refuses.
set(lent_to_serialize "data/detail/(DataTypes|ValueText)")
set(lent_to_accessor "data/detail/StructureRegistry|serialize/detail/StructureFault")
foreach(folder IN ITEMS data serialize accessor)
    file(GLOB_RECURSE files RELATIVE ${root} ${root}/vumo/${folder}/*.h ${root}/vumo/${folder}/*.cpp)
    foreach(file IN LISTS files)
        file(STRINGS ${root}/${file} lines REGEX "^#include \"vumo/.*detail/")
        list(FILTER lines EXCLUDE REGEX "vumo/(foundation|${folder})/detail/")
        if(DEFINED lent_to_${folder})
            list(FILTER lines EXCLUDE REGEX "vumo/(${lent_to_${folder}})\\.h")
        endif()
        foreach(line IN LISTS lines)
            message(SEND_ERROR "${file}: ${line}: the detail/ of that folder is not for ${folder}")
        endforeach()
    endforeach()
endforeach()
