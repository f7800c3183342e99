# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# cmake -DQMLPLUGINDUMP=program -DIMPORT_PATH=directory -DOUTPUT=file -P DumpQmlTypes.cmake
# Writes the description of the module's types.
set(ENV{QT_QPA_PLATFORM} minimal)
# The types do not depend on what the bus and the device have to say.
set(ENV{DBUS_SESSION_BUS_ADDRESS} "unix:path=/nonexistent")
set(ENV{DBUS_SYSTEM_BUS_ADDRESS} "unix:path=/nonexistent")
execute_process(
    COMMAND "${QMLPLUGINDUMP}" -nonrelocatable -noinstantiate Telvaro 1.0 "${IMPORT_PATH}"
    OUTPUT_VARIABLE description
    RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${QMLPLUGINDUMP} failed: ${status}")
endif()
# The comment at its head names directories of this machine.
string(REGEX REPLACE "//[^\n]*\n" "" description "${description}")
# REUSE-IgnoreStart
file(WRITE "${OUTPUT}"
    "// SPDX-License-Identifier: MIT\n// SPDX-FileCopyrightText: The Telvaro authors\n${description}")
# REUSE-IgnoreEnd
