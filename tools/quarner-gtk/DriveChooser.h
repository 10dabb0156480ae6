// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/dropdown.h>
#include <gtkmm/stringlist.h>

#include <functional>
#include <string>
#include <vector>

#include "quarner/project/DiscDrive.h"

namespace quarner::window {

/// The drives that can burn, and as its last entry "Image file...".
class DriveChooser : public Gtk::DropDown {
public:
    struct Handlers {
        std::function<void()> chosen;      ///< another drive was chosen
        std::function<void()> imageWanted; ///< the last entry was chosen
    };

    explicit DriveChooser(Handlers handlers);

    /// Shows these drives. Keeps the one that is chosen. If it was unplugged and there are others,
    /// none is chosen until it is back or the user chooses one. Otherwise chooses the first.
    void show(const std::vector<DiscDrive>& drives);
    /// Chooses the drive with this name, once it is shown.
    void choose(const std::string& name);
    /// Chooses that drive, otherwise the first, of those that are shown next: of another project,
    /// which has other identities for the same drives.
    void startOver(const std::string& name);
    /// 0, which is no drive's, if there is none.
    DiscDrive::Id chosen() const { return _chosen; }
    /// Whether there is a drive to choose.
    bool hasDrive() const { return _drives.back() != 0; }

private:
    void waitForUnplugged(const std::vector<DiscDrive>& drives);
    void setNames(const std::vector<Glib::ustring>& names);
    void selectionChanged();
    void selectChosen();

    const Handlers _handlers;
    Glib::RefPtr<Gtk::StringList> _names;
    std::vector<DiscDrive::Id> _drives; ///< of the entries; the last entry is none of them
    DiscDrive::Id _chosen = 0;
    std::string _chosenName;
    std::string _wantedName;
    bool _isBeingFilled = false;
};

} // namespace quarner::window
