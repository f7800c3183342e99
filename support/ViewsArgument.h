// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QDBusArgument;

/// The task switcher's list of views as it comes from the bus.
class ViewsArgument
{
public:
    /// Whether the argument can be read as a list of views: it is an array of structures that begin with six strings
    /// (or object paths), two integers of any width and a dictionary a{sv}, or an empty array of anything. To be asked
    /// first, since QDBusArgument hands a read of the wrong type to libdbus, which ends the process.
    static bool isReadable(const QDBusArgument& argument);
};
