// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/simpleaction.h>
#include <giomm/volumemonitor.h>
#include <gtkmm/applicationwindow.h>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/quarner-gtk/Burning.h"
#include "tools/quarner-gtk/Compilation.h"
#include "tools/quarner-gtk/FileSearch.h"
#include "tools/quarner-gtk/WindowLayout.h"

namespace quarner::window {

/// The window: a compilation, what it takes of the disc in the chosen drive, and the burn.
class Window : public Gtk::ApplicationWindow {
public:
    explicit Window(DiscProject::Kind kind);
    ~Window() override;

    /// Makes a compilation for the other kind of disc from the same files. Does nothing while files
    /// are being added or a disc is being burnt.
    void setKind(DiscProject::Kind kind);
    /// Adds the files that a user means by paths of files, folders and playlists. Says that they
    /// are not added while a disc is being burnt.
    void open(const std::vector<std::string>& paths, std::optional<std::size_t> row = std::nullopt);

private:
    struct Image {
        std::string drive; ///< the name of its drive
        std::string path;
        bool mayBeReplaced = false; ///< the user has just agreed
    };

    // What the user does
    void addActions();
    void addEdit(const std::string& name, std::function<void()> edit);
    void addShortcuts();
    void startCompilation(DiscProject::Kind kind);
    void chooseFiles(Gtk::FileChooser::Action action);
    void chooseImage();
    void useImage(const std::string& path);
    void addFound(const std::vector<std::string>& files, std::optional<std::size_t> row);
    void removeSelected();
    void moveSelected(bool down);
    void moveRows(const std::set<std::size_t>& rows, std::size_t to);
    void eject(DiscDrive::Id drive);
    void burnOrCancel();
    void cancelBurn();
    void burnAnother(const EndBar::Burnt& burnt);
    void openFolderOf(const std::string& image);
    bool on_close_request() override;

    // What it shows
    void wantRefresh();
    void refresh();
    void refreshActions();
    void refreshNotice();
    void showAdding(const std::string& name, std::size_t index, std::size_t of);
    void showProgress(const DiscBurnProgress& progress);
    void burnEnded(const DiscBurnEnd& end);
    void insertBlankImage(DiscDrive::Id drive);
    void say(const std::string& text);

    DiscProject& project() const { return _compilation->project(); }
    bool isBurning() const { return project().isBurning() || _burning.isStarting(); }
    bool isEditable() const { return !isBurning(); }
    bool isOnImage() const;

    WindowLayout _layout;
    FileSearch _search;
    Burning _burning;
    std::unique_ptr<Compilation> _compilation;
    std::optional<Image> _image;
    bool _isClosing = false;
    bool _isCanceling = false;
    /// Kept, because making one takes long.
    const Glib::RefPtr<Gio::VolumeMonitor> _mounts = Gio::VolumeMonitor::get();
    sigc::connection _refreshing;
    Glib::RefPtr<Gtk::FileChooserNative> _chooser;
    std::vector<Glib::RefPtr<Gio::SimpleAction>> _edits; ///< possible unless a disc is being burnt
    Glib::RefPtr<Gio::SimpleAction> _undo;
    Glib::RefPtr<Gio::SimpleAction> _redo;
    Glib::RefPtr<Gio::SimpleAction> _eject;
};

} // namespace quarner::window
