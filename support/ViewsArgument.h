// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QDBusArgument;

/// The D-Bus argument that holds the task switcher's list of views.
class ViewsArgument
{
public:
    /// Returns whether the argument can be read as a list of views: an array of structures that begin with six strings
    /// or object paths, two integers of any width and a dictionary a{sv}, or an empty array of anything. Checked before
    /// reading, because QDBusArgument passes a read of the wrong type on to libdbus, which aborts.
    static bool isReadable(const QDBusArgument& argument);
};
