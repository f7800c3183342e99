# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# The library calls nothing of QtDBus, Qt or the system that waits. CONNECTORS is the library that does.
function(find_blocking_calls variable library)
    execute_process(
        COMMAND "${NM}" --dynamic --undefined-only --demangle "${library}"
        OUTPUT_VARIABLE output
        RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${NM} cannot read ${library}")
    endif()
    string(REGEX MATCHALL "[^\n]+" symbols "${output}")
    list(TRANSFORM symbols REPLACE "^ *[Uw] " "")
    set(blocking
        "QDBusConnection::(call|interface|connectTo[A-Za-z]*|registerService)\\("
        "QDBus(Abstract|Connection)?Interface::"
        "QDBusServiceWatcher::"
        "::waitFor"
        "^dbus_"
        "QEventLoop|processEvents|QThread::|QMutex|QSemaphore|QWaitCondition|QProcess|QTimer::"
        "^(p?poll|p?select|epoll_wait|nanosleep|u?sleep|wait|waitpid|read|recv|pthread_cond_.*wait)(@|$)")
    list(JOIN blocking "|" blocking)
    list(FILTER symbols INCLUDE REGEX "${blocking}")
    set(${variable} ${symbols} PARENT_SCOPE)
endfunction()

find_blocking_calls(calls "${LIBRARY}")
if(calls)
    list(JOIN calls "\n  " calls)
    message(FATAL_ERROR "${LIBRARY} may wait, in:\n  ${calls}")
endif()
find_blocking_calls(calls "${CONNECTORS}")
if(NOT calls MATCHES "QDBusAbstractInterface::callWithArgumentList")
    message(FATAL_ERROR "The calls that ${CONNECTORS} waits in are not found")
endif()
