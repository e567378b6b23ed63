# Writes the one ```cpp block of the Markdown file `from` to `to`; none, or more than one, is an error.
# Compilers report the lines of the Markdown file.
function(extract_example from to)
    file(READ ${from} text)
    set(fence "```")
    set(opening "\n${fence}cpp\n")
    string(FIND "${text}" "${opening}" start)
    string(FIND "${text}" "${opening}" last REVERSE)
    if(start EQUAL -1 OR NOT start EQUAL last)
        message(FATAL_ERROR "${from} needs exactly one ${fence}cpp block")
    endif()

    string(SUBSTRING "${text}" 0 ${start} before)
    string(LENGTH "${opening}" opening_length)
    math(EXPR start "${start} + ${opening_length}")
    string(SUBSTRING "${text}" ${start} -1 code)
    string(FIND "${code}" "\n${fence}" end)
    if(end EQUAL -1)
        message(FATAL_ERROR "${from}: the ${fence}cpp block is not closed")
    endif()
    string(SUBSTRING "${code}" 0 ${end} code)

    string(REGEX MATCHALL "\n" newlines "${before}")
    list(LENGTH newlines line)
    math(EXPR line "${line} + 3") # the line that the block opens and the first line of code follow

    file(WRITE ${to}.new "#line ${line} \"${from}\"\n${code}\n")
    file(COPY_FILE ${to}.new ${to} ONLY_IF_DIFFERENT)
endfunction()
