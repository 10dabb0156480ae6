// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/DroppedContent.h"

#include <gdk/gdk.h>

#include <memory>

#include "tools/quarner-gtk/Paths.h"

namespace quarner::window {
namespace {

using RowsValue = Glib::Value<DraggedRows>;

} // namespace

Glib::RefPtr<Gdk::ContentProvider> contentFor(const DraggedRows& rows) {
    RowsValue value;
    value.init(RowsValue::value_type());
    value.set(rows);
    return Gdk::ContentProvider::create(value);
}

Glib::RefPtr<Gtk::DropTarget> makeDropTarget() {
    const auto target =
        Gtk::DropTarget::create(G_TYPE_INVALID, Gdk::DragAction::COPY | Gdk::DragAction::MOVE);
    target->set_gtypes({RowsValue::value_type(), GDK_TYPE_FILE_LIST});
    return target;
}

DroppedContent droppedContent(const Glib::ValueBase& value) {
    if (G_VALUE_HOLDS(value.gobj(), RowsValue::value_type())) {
        RowsValue rows;
        rows.init(value.gobj());
        return rows.get();
    }
    if (!G_VALUE_HOLDS(value.gobj(), GDK_TYPE_FILE_LIST))
        return {};
    auto* const list = static_cast<GdkFileList*>(g_value_get_boxed(value.gobj()));
    const std::unique_ptr<GSList, decltype(&g_slist_free)> files(gdk_file_list_get_files(list),
                                                                 &g_slist_free);
    std::vector<std::string> paths;
    for (const GSList* file = files.get(); file != nullptr; file = file->next)
        paths.push_back(pathOf(Glib::wrap(static_cast<GFile*>(file->data), true)));
    return paths;
}

} // namespace quarner::window
