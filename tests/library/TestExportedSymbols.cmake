# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# What leaves the shared library against the list of what is meant to, with any compiler and without Debian's tools.
execute_process(
    COMMAND "${NM}" --dynamic --defined-only --demangle "${LIBRARY}"
    OUTPUT_VARIABLE output
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${NM} cannot read ${LIBRARY}")
endif()
string(REGEX MATCHALL "[^\n]+" lines "${output}")
set(symbols "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]+ . " "" symbol "${line}")
    # The address sanitizer marks exported variables with symbols of its own; and inline functions and types of other
    # libraries stay as weak symbols without optimisation, or with another compiler for this library's types.
    if(NOT symbol MATCHES "^__odr_asan"
            AND (NOT line MATCHES "^[0-9a-f]+ [VW] " OR symbol MATCHES "^(vtable for |typeinfo (name )?for )?Telvaro"))
        list(APPEND symbols "${symbol}")
    endif()
endforeach()
list(REMOVE_DUPLICATES symbols)

file(STRINGS "${LIST}" expected REGEX "^ [(]c[+][+][)]")
list(TRANSFORM expected REPLACE "^ [(]c[+][+][)]\"(.*)@Base\" .*$" "\\1")
set(surplus ${symbols})
list(REMOVE_ITEM surplus ${expected})
set(missing ${expected})
list(REMOVE_ITEM missing ${symbols})
if(surplus OR missing)
    list(JOIN surplus "\n  " surplus)
    list(JOIN missing "\n  " missing)
    message(FATAL_ERROR
        "The exported interface differs from ${LIST}.\n"
        "Exported, but not in the list:\n  ${surplus}\n"
        "In the list, but not exported:\n  ${missing}")
endif()
