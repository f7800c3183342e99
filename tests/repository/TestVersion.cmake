# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Both lists of changes begin with the project's version.
function(check_version file pattern)
    file(STRINGS "${SOURCE_DIRECTORY}/${file}" headings REGEX "${pattern}")
    list(GET headings 0 first)
    string(REGEX REPLACE "${pattern}" "\\1" version "${first}")
    if(NOT version STREQUAL VERSION)
        message(FATAL_ERROR "${file} begins with version ${version}, not ${VERSION}")
    endif()
endfunction()

check_version(CHANGELOG.md "^## (.*)$")
check_version(packaging/debian/changelog "^telvaro [(]([^)]*)[)].*$")

# A recipe carries the version in its name.
file(GLOB recipes RELATIVE "${SOURCE_DIRECTORY}/packaging/yocto" "${SOURCE_DIRECTORY}/packaging/yocto/*.bb")
if(NOT recipes STREQUAL "telvaro_${VERSION}.bb")
    message(FATAL_ERROR "packaging/yocto holds ${recipes}, not telvaro_${VERSION}.bb")
endif()
