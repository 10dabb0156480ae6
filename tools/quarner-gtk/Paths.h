// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/file.h>
#include <giomm/listmodel.h>

#include <memory>
#include <string>
#include <vector>

namespace quarner::window {

/// The path of a file, or its URI if it has none: the list then says that it cannot be added.
inline std::string pathOf(const Glib::RefPtr<const Gio::File>& file) {
    const std::string path = file->get_path();
    return path.empty() ? std::string(file->get_uri()) : path;
}

/// Those of a list of files.
inline std::vector<std::string> pathsIn(const Gio::ListModel& files) {
    std::vector<std::string> paths;
    for (guint i = 0; i < files.get_n_items(); ++i)
        paths.push_back(pathOf(std::dynamic_pointer_cast<const Gio::File>(files.get_object(i))));
    return paths;
}

} // namespace quarner::window
