// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/file.h>
#include <giomm/listmodel.h>

#include <string>
#include <vector>

namespace quarner::window {

/// The path of a file, or its URI if it has none: the list then says that it cannot be added.
inline std::string pathOf(const Glib::RefPtr<const Gio::File>& file) {
    const std::string path = file->get_path();
    return path.empty() ? std::string(file->get_uri()) : path;
}

/// Those of a list of files.
inline std::vector<std::string> pathsIn(Gio::ListModel& files) {
    std::vector<std::string> paths;
    // The list's own way to an item, get_object, returns null for the files of GIO, whose classes
    // have no counterpart in C++.
    for (guint i = 0; i < files.get_n_items(); ++i)
        paths.push_back(
            pathOf(Glib::wrap(static_cast<GFile*>(g_list_model_get_item(files.gobj(), i)))));
    return paths;
}

} // namespace quarner::window
