# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# cmake -DQMLPLUGINDUMP=... -DIMPORT_PATH=... -DDUMP_SCRIPT=... -DEXPECTED=... -DOUTPUT=... -P CompareQmlTypes.cmake
# Fails where the checked-in description of the QML types is not that of the module.
include("${DUMP_SCRIPT}")
execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files "${EXPECTED}" "${OUTPUT}" RESULT_VARIABLE difference)
if(NOT difference EQUAL 0)
    message(FATAL_ERROR "${EXPECTED} is not current; build the target qmltypes")
endif()
