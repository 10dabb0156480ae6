// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gio/gio.h>

#include <memory>

namespace quarner {

/// A deleter that calls a function of GLib.
template <auto release>
struct ReleasedBy {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

/// Owning pointers to memory and objects of GLib.
template <typename T>
using GMemory = std::unique_ptr<T, ReleasedBy<g_free>>;
template <typename T>
using GObjectPtr = std::unique_ptr<T, ReleasedBy<g_object_unref>>;
using GText = GMemory<char>;

} // namespace quarner
