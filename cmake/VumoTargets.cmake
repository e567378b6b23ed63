# Gives one of our own targets what all of them share: plain C++17 and the warnings that our code is clean of.
function(vumo_configure_target target)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        COMPILE_WARNING_AS_ERROR ${VUMO_WARNINGS_AS_ERRORS})
    target_compile_features(${target} PRIVATE cxx_std_17)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
endfunction()
