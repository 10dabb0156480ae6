// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/WindowLayout.h"

#include <giomm/menu.h>
#include <giomm/menuitem.h>
#include <gtkmm/gestureclick.h>
#include <gtkmm/image.h>
#include <gtkmm/settings.h>

#include <string>
#include <utility>

#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr int margin = 12;
constexpr char listPage[] = "list";
constexpr char emptyPage[] = "empty";

void makeIconButton(Gtk::Button& button, const char* icon, const std::string& name,
                    const char* action) {
    button.set_icon_name(icon);
    button.set_tooltip_text(name);
    button.set_action_name(action);
    setSpokenName(button, name);
}

void addItem(const Glib::RefPtr<Gio::Menu>& menu, const std::string& label, const char* action,
             const char* keys = nullptr) {
    const auto item = Gio::MenuItem::create(label, action);
    if (keys != nullptr)
        item->set_attribute_value("accel", Glib::Variant<Glib::ustring>::create(keys));
    menu->append_item(item);
}

/// Takes the second click of a double click away from the button in a box: it would cancel what the
/// first one has begun. A gesture of the button itself would end when the button takes the first.
/// The gesture's own count starts again if the first click keeps the main loop busy.
void takeSecondClicks(Gtk::Box& place) {
    const auto clicks = Gtk::GestureClick::create();
    clicks->set_propagation_phase(Gtk::PropagationPhase::CAPTURE);
    const auto longest =
        static_cast<guint32>(place.get_settings()->property_gtk_double_click_time().get_value());
    clicks->signal_pressed().connect(
        [gesture = clicks.get(), longest, last = guint32{0}](int, double, double) mutable {
            const guint32 before = std::exchange(last, gesture->get_current_event_time());
            if (last - before <= longest)
                gesture->set_state(Gtk::EventSequenceState::CLAIMED);
        });
    place.add_controller(clicks);
}

Glib::RefPtr<Gio::Menu> makeMenu() {
    const auto edit = Gio::Menu::create();
    addItem(edit, _("Undo"), "win.undo", "<Control>z");
    addItem(edit, _("Redo"), "win.redo", "<Control><Shift>z");
    addItem(edit, _("Remove"), "win.remove", "Delete");
    addItem(edit, _("Move Up"), "win.move-up", "<Alt>Up");
    addItem(edit, _("Move Down"), "win.move-down", "<Alt>Down");
    addItem(edit, _("Remove All"), "win.clear");
    const auto files = Gio::Menu::create();
    addItem(files, _("Add Files…"), "win.add-files", "<Control>o");
    addItem(files, _("Add Folder…"), "win.add-folder", "<Control><Shift>o");
    const auto disc = Gio::Menu::create();
    addItem(disc, _("Burn to an Image…"), "win.choose-image", "<Control>s");
    addItem(disc, _("Eject"), "win.eject", "<Control>e");
    const auto program = Gio::Menu::create();
    addItem(program, _("About"), "app.about");
    const auto menu = Gio::Menu::create();
    for (const auto& section : {files, edit, disc, program})
        menu->append_section(section);
    return menu;
}

} // namespace

WindowLayout::WindowLayout(Handlers handlers)
    : end(std::move(handlers.end)), drives(std::move(handlers.drives)) {
    layOutHeader();
    layOutEmptyPage();
    layOutWork();
    layOutBottom();
    content.set_vexpand(true);
    for (Gtk::Widget* const part :
         std::initializer_list<Gtk::Widget*>{&_kinds, &refusals, &end, &content, &_bottom})
        page.append(*part);
}

void WindowLayout::layOutHeader() {
    makeIconButton(_add, "list-add-symbolic", _("Add Files…"), "win.add-files");
    makeIconButton(_undo, "edit-undo-symbolic", _("Undo"), "win.undo");
    audio.set_label(_("Audio CD"));
    data.set_label(_("Data CD"));
    data.set_group(audio);
    _kinds.add_css_class("linked");
    _kinds.set_homogeneous(true);
    _kinds.set_margin(margin);
    for (Gtk::ToggleButton* const kind : {&audio, &data}) {
        kind->set_hexpand(true);
        _kinds.append(*kind);
    }
    _menu.set_icon_name("open-menu-symbolic");
    _menu.set_menu_model(makeMenu());
    _menu.set_primary(true); // F10 opens it
    _menu.set_tooltip_text(_("Menu"));
    setSpokenName(_menu, _("Menu"));
    header.pack_start(_add);
    header.pack_start(_undo);
    header.pack_end(_menu);
}

void WindowLayout::layOutEmptyPage() {
    auto* const icon = Gtk::make_managed<Gtk::Image>();
    icon->set_from_icon_name("media-optical-symbolic");
    icon->set_pixel_size(96);
    icon->add_css_class("dim-label");
    auto* const head = Gtk::make_managed<Gtk::Label>(_("Drop music here"));
    head->add_css_class("title-2");
    auto* const text = Gtk::make_managed<Gtk::Label>(
        _("Files, folders and playlists, from your file manager or by the button."));
    auto* const add = Gtk::make_managed<Gtk::Button>(_("Add Files…"));
    add->set_action_name("win.add-files");
    add->add_css_class("pill");
    add->set_halign(Gtk::Align::CENTER);
    for (Gtk::Label* const label : {head, text}) {
        label->set_wrap(true);
        label->set_wrap_mode(Pango::WrapMode::WORD_CHAR);
        label->set_justify(Gtk::Justification::CENTER);
    }
    _empty.set_valign(Gtk::Align::CENTER);
    _empty.set_margin(2 * margin);
    for (Gtk::Widget* const part : std::initializer_list<Gtk::Widget*>{icon, head, text, add})
        _empty.append(*part);
    content.add(_empty, emptyPage);
}

void WindowLayout::layOutWork() {
    workText.set_xalign(0);
    workText.set_ellipsize(Pango::EllipsizeMode::END);
    workText.add_css_class("numeric");
    stopAdding.set_label(_("Stop"));
    stopAdding.set_valign(Gtk::Align::CENTER);
    _workColumn.set_hexpand(true);
    _workColumn.append(workText);
    _workColumn.append(progress);
    _workRow.append(_workColumn);
    _workRow.append(stopAdding);
    work.set_child(_workRow);
}

void WindowLayout::layOutBottom() {
    notice.set_wrap(true);
    notice.set_wrap_mode(Pango::WrapMode::WORD_CHAR);
    notice.set_xalign(0);
    notice.add_css_class("caption");
    title.set_placeholder_text(_("Title of the disc"));
    title.set_hexpand(true);
    setSpokenName(title, _("Title of the disc"));
    _lastRow.append(title);
    _burnPlace.append(burn);
    takeSecondClicks(_burnPlace);
    _lastRow.append(_burnPlace);
    _bottom.set_margin(margin);
    for (Gtk::Widget* const part :
         std::initializer_list<Gtk::Widget*>{&capacity, &work, &drives, &notice, &_lastRow})
        _bottom.append(*part);
}

void WindowLayout::showList(bool isEmpty) {
    content.set_visible_child(isEmpty ? emptyPage : listPage);
}

void WindowLayout::setList(Gtk::Widget& list) {
    if (Gtk::Widget* const before = content.get_child_by_name(listPage))
        content.remove(*before);
    content.add(list, listPage);
}

void WindowLayout::showWork(const std::string& text, double fraction, bool isAdding) {
    workText.set_text(text);
    setSpokenName(progress, text);
    progress.set_fraction(fraction);
    stopAdding.set_visible(isAdding);
    work.set_reveal_child(true);
}

} // namespace quarner::window
