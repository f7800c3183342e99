// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// Closes the descriptors above standard error, which a process has inherited.
void closeInheritedDescriptors();
