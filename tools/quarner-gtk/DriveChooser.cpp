// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/DriveChooser.h"

#include <gtkmm/label.h>
#include <gtkmm/listitem.h>
#include <gtkmm/signallistitemfactory.h>
#include <gtkmm/stringobject.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "quarner/display.h"
#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

/// A row that is never wider than the place that it has.
Glib::RefPtr<Gtk::ListItemFactory> shortRows() {
    const auto factory = Gtk::SignalListItemFactory::create();
    factory->signal_setup().connect([](const auto& item) {
        auto* const label = Gtk::make_managed<Gtk::Label>();
        label->set_xalign(0);
        label->set_ellipsize(Pango::EllipsizeMode::MIDDLE); // the end says the kind of image
        item->set_child(*label);
    });
    factory->signal_bind().connect([](const auto& item) {
        const auto name = std::dynamic_pointer_cast<Gtk::StringObject>(item->get_item());
        dynamic_cast<Gtk::Label&>(*item->get_child()).set_text(name->get_string());
    });
    return factory;
}

} // namespace

DriveChooser::DriveChooser(Handlers handlers)
    : _handlers(std::move(handlers)), _names(Gtk::StringList::create({})) {
    set_model(_names);
    // The list, which may be wider than the window, shows the whole names.
    set_list_factory(get_factory());
    set_factory(shortRows());
    set_hexpand(true);
    property_selected().signal_changed().connect([this] { selectionChanged(); });
    show({});
}

void DriveChooser::show(const std::vector<DiscDrive>& drives) {
    waitForUnplugged(drives);
    std::vector<Glib::ustring> names;
    _drives.clear();
    DiscDrive::Id wanted = 0;
    for (const DiscDrive& drive : drives) {
        if (drive.isExamined && !drive.canWrite)
            continue;
        names.emplace_back(safeText(drive.name));
        _drives.push_back(drive.id);
        if (drive.name == _wantedName)
            wanted = drive.id;
    }
    if (wanted != 0) {
        _chosen = wanted;
        _wantedName.clear();
    }
    const bool isShown = std::find(_drives.begin(), _drives.end(), _chosen) != _drives.end();
    // An entry that is selected cannot be chosen.
    if (_drives.empty() || (!isShown && !_wantedName.empty())) {
        names.insert(names.begin(), _("No drive"));
        _drives.insert(_drives.begin(), 0);
    }
    names.emplace_back(_("Image file..."));
    setNames(names);
    if (!isShown)
        _chosen = _drives.front();
    const auto chosen = std::find_if(drives.begin(), drives.end(),
                                     [this](const auto& drive) { return drive.id == _chosen; });
    _chosenName = chosen == drives.end() ? "" : chosen->name;
    selectChosen();
}

void DriveChooser::waitForUnplugged(const std::vector<DiscDrive>& drives) {
    const bool isThere = std::any_of(drives.begin(), drives.end(),
                                     [this](const auto& drive) { return drive.id == _chosen; });
    if (_wantedName.empty() && !isThere && !drives.empty())
        _wantedName = _chosenName;
}

/// Leaves the list alone, which may be open, if nothing has changed.
void DriveChooser::setNames(const std::vector<Glib::ustring>& names) {
    bool isSame = _names->get_n_items() == names.size();
    for (guint i = 0; isSame && i < names.size(); ++i)
        isSame = _names->get_string(i).raw() == names[i].raw();
    if (isSame)
        return;
    _isBeingFilled = true;
    _names->splice(0, _names->get_n_items(), names);
    _isBeingFilled = false;
}

void DriveChooser::choose(const std::string& name) { _wantedName = name; }

void DriveChooser::startOver(const std::string& name) {
    _chosen = 0;
    _chosenName.clear();
    _wantedName = name;
}

void DriveChooser::selectChosen() {
    const auto entry = std::find(_drives.begin(), _drives.end(), _chosen) - _drives.begin();
    _isBeingFilled = true;
    set_selected(static_cast<guint>(entry));
    _isBeingFilled = false;
    // The focus goes to the button in it.
    const Glib::ustring drive = _names->get_string(static_cast<guint>(entry));
    const std::string name = _("Drive: {name}", {{"name", drive}});
    setSpokenName(*this, name);
    setSpokenName(*get_first_child(), name);
}

void DriveChooser::selectionChanged() {
    if (_isBeingFilled)
        return;
    if (get_selected() >= _drives.size()) {
        selectChosen();
        return _handlers.imageWanted();
    }
    _chosen = _drives[get_selected()];
    _wantedName.clear();
    _handlers.chosen();
}

} // namespace quarner::window
