// SPDX-License-Identifier: LGPL-2.1-or-later
//
// A window from which files can be dragged, as from a file manager: those that are its arguments.
#include <gtk/gtk.h>

#include <span>

namespace {

std::span<char*> files;

GdkContentProvider* contentOf(GtkDragSource* /*source*/, double /*x*/, double /*y*/,
                              gpointer /*data*/) {
    GSList* list = nullptr;
    for (auto file = files.rbegin(); file != files.rend(); ++file)
        list = g_slist_prepend(list, g_file_new_for_path(*file));
    GdkFileList* const dragged = gdk_file_list_new_from_list(list);
    GdkContentProvider* const content = gdk_content_provider_new_typed(GDK_TYPE_FILE_LIST, dragged);
    g_boxed_free(GDK_TYPE_FILE_LIST, dragged);
    g_slist_free_full(list, g_object_unref);
    return content;
}

} // namespace

int main(int count, char** arguments) {
    files = std::span(arguments, static_cast<std::size_t>(count)).subspan(1);
    gtk_init();
    GtkWidget* const window = gtk_window_new();
    gtk_window_set_title(GTK_WINDOW(window), "Files to drag");
    gtk_window_set_default_size(GTK_WINDOW(window), 200, 200);
    GtkDragSource* const source = gtk_drag_source_new();
    gtk_drag_source_set_actions(source, GDK_ACTION_COPY);
    g_signal_connect(source, "prepare", G_CALLBACK(contentOf), nullptr);
    GtkWidget* const label = gtk_label_new("Drag from here");
    gtk_widget_add_controller(label, GTK_EVENT_CONTROLLER(source));
    gtk_window_set_child(GTK_WINDOW(window), label);
    gtk_window_present(GTK_WINDOW(window));
    while (g_list_model_get_n_items(gtk_window_get_toplevels()) > 0)
        g_main_context_iteration(nullptr, TRUE);
}
