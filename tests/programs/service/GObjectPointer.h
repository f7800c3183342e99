// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <gio/gio.h>

#include <memory>

struct GObjectUnref
{
    void operator()(gpointer object) const
    {
        g_object_unref(object);
    }
};

/// Owns one reference to a GObject.
template <typename T> using GObjectPointer = std::unique_ptr<T, GObjectUnref>;

struct GVariantUnref
{
    void operator()(GVariant* value) const
    {
        g_variant_unref(value);
    }
};

/// Owns one reference to a GVariant.
using GVariantPointer = std::unique_ptr<GVariant, GVariantUnref>;
