// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Window.h"

#include <gdkmm/applaunchcontext.h>
#include <giomm/appinfo.h>
#include <giomm/file.h>
#include <glibmm/fileutils.h>
#include <glibmm/miscutils.h>
#include <gtkmm/filefilter.h>
#include <gtkmm/shortcut.h>
#include <gtkmm/shortcutaction.h>
#include <gtkmm/shortcutcontroller.h>
#include <gtkmm/shortcuttrigger.h>

#include <algorithm>
#include <utility>

#include "quarner/desktop.h"
#include "quarner/display.h"
#include "quarner/playlist.h"
#include "tools/quarner-gtk/Paths.h"
#include "tools/quarner-gtk/Question.h"
#include "tools/quarner-gtk/Renderer.h"
#include "tools/quarner-gtk/Sentences.h"
#include "tools/words/ImageExtension.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr int width = 480;
constexpr int height = 640;

Glib::RefPtr<Gtk::Shortcut> shortcut(const char* keys, const char* action) {
    return Gtk::Shortcut::create(Gtk::ShortcutTrigger::parse_string(keys),
                                 Gtk::NamedAction::create(action));
}

Glib::RefPtr<Gtk::FileFilter> filterForMusic() {
    const auto filter = Gtk::FileFilter::create();
    filter->set_name(_("Music and playlists"));
    for (const std::string& extension : DiscProject::fileExtensions())
        filter->add_suffix(extension);
    for (const std::string& extension : playlistExtensions())
        filter->add_suffix(extension);
    return filter;
}

} // namespace

Window::Window(DiscProject::Kind kind)
    : _layout({{[this] { wantRefresh(); }, [this] { chooseImage(); }},
               {[this](const auto& burnt) { openFolderOf(burnt.image); },
                [this](const auto& burnt) { burnAnother(burnt); }}}),
      _burning(*this, {[this] { wantRefresh(); }, [this](const auto& text) { say(text); }}) {
    set_title(_("Burn a Disc"));
    set_icon_name(QUARNER_APPLICATION_ID);
    set_default_size(width, height);
    set_titlebar(_layout.header);
    set_child(_layout.page);
    addActions();
    addShortcuts();
    startCompilation(kind);
    const auto chosen = [this](Gtk::ToggleButton& button, DiscProject::Kind itsKind) {
        button.set_active(itsKind == project().kind());
        button.signal_toggled().connect([this, &button, itsKind] {
            if (button.get_active())
                setKind(itsKind);
        });
    };
    chosen(_layout.audio, DiscProject::Kind::Audio);
    chosen(_layout.data, DiscProject::Kind::Data);
    _layout.burn.signal_clicked().connect([this] { burnOrCancel(); });
    _layout.title.signal_activate().connect([this] { _layout.burn.grab_focus(); });
    _layout.stopAdding.signal_clicked().connect([this] { project().cancelAdding(); });
    const auto target = makeDropTarget();
    target->signal_drop().connect(
        [this](const auto& value, double, double) {
            const DroppedContent content = droppedContent(value);
            const auto* const paths = std::get_if<std::vector<std::string>>(&content);
            if (paths != nullptr)
                open(*paths);
            return paths != nullptr;
        },
        false);
    _layout.content.add_controller(target);
    refresh();
}

Window::~Window() { _refreshing.disconnect(); }

// --- What the user does ---

void Window::addEdit(const std::string& name, std::function<void()> edit) {
    _edits.push_back(add_action(name, std::move(edit)));
}

void Window::addActions() {
    addEdit("add-files", [this] { chooseFiles(Gtk::FileChooser::Action::OPEN); });
    addEdit("add-folder", [this] { chooseFiles(Gtk::FileChooser::Action::SELECT_FOLDER); });
    addEdit("remove", [this] { removeSelected(); });
    addEdit("move-up", [this] { moveSelected(false); });
    addEdit("move-down", [this] { moveSelected(true); });
    addEdit("clear", [this] { _compilation->history().clear(); });
    addEdit("choose-image", [this] { chooseImage(); });
    _undo = add_action("undo", [this] { _compilation->history().undo(); });
    _redo = add_action("redo", [this] { _compilation->history().redo(); });
    _eject = add_action("eject", [this] { eject(_layout.drives.chosen()); });
}

/// Behind the focus, so that keys mean in the title what they mean in a text.
void Window::addShortcuts() {
    const auto shortcuts = Gtk::ShortcutController::create();
    const std::pair<const char*, const char*> keys[] = {{"<Control>z", "win.undo"},
                                                        {"<Control><Shift>z", "win.redo"},
                                                        {"<Control>y", "win.redo"},
                                                        {"<Control>o", "win.add-files"},
                                                        {"<Control><Shift>o", "win.add-folder"},
                                                        {"<Control>s", "win.choose-image"},
                                                        {"<Control>e", "win.eject"},
                                                        {"<Control>w", "window.close"}};
    for (const auto& [key, action] : keys)
        shortcuts->add_shortcut(shortcut(key, action));
    add_controller(shortcuts);
}

void Window::startCompilation(DiscProject::Kind kind) {
    const Compilation::Handlers handlers = {
        .changed = [this] { wantRefresh(); },
        .fileRefused = [this](const std::string& text) { _layout.refusals.add(text); },
        .addingProgress = [this](const std::string& name, std::size_t index,
                                 std::size_t of) { showAdding(name, index, of); },
        .burnProgress = [this](const auto& progress) { showProgress(progress); },
        .burnEnded = [this](const DiscBurnEnd& end) { burnEnded(end); }};
    auto next = std::make_unique<Compilation>(
        kind, handlers,
        TrackList::Handlers{[this](const auto& rows, std::size_t to) { moveRows(rows, to); },
                            [this](const auto& paths, std::size_t row) { open(paths, row); }});
    const auto keys = Gtk::ShortcutController::create();
    keys->add_shortcut(shortcut("Delete", "win.remove"));
    keys->add_shortcut(shortcut("<Alt>Up", "win.move-up"));
    keys->add_shortcut(shortcut("<Alt>Down", "win.move-down"));
    next->list().view().add_controller(keys);
    _layout.setList(next->list());
    _compilation = std::move(next);
}

void Window::setKind(DiscProject::Kind kind) {
    if (kind == project().kind() || !isEditable() || project().isAdding())
        return wantRefresh();
    const std::vector<std::string> paths = _compilation->paths();
    const auto drive = project().drive(_layout.drives.chosen());
    _layout.drives.startOver(drive && !isOnImage() ? drive->name : "");
    if (const auto image = std::exchange(_image, std::nullopt)) // its format is that of the kind
        removeImageDrive(image->drive);
    _layout.refusals.clear();
    _layout.end.hideEnd(); // it offers to use the drive of the project that goes
    startCompilation(kind);
    if (!paths.empty())
        project().add(paths);
    wantRefresh();
}

void Window::open(const std::vector<std::string>& paths, std::optional<std::size_t> row) {
    if (!isEditable())
        return addFound({}, row);
    _search.find(paths,
                 [this, row](const std::vector<std::string>& files) { addFound(files, row); });
    wantRefresh();
}

void Window::addFound(const std::vector<std::string>& files, std::optional<std::size_t> row) {
    if (!isEditable())
        say(_("No files can be added while a disc is being burnt."));
    else if (!files.empty())
        _compilation->history().add(files, row);
    wantRefresh();
}

void Window::chooseFiles(Gtk::FileChooser::Action action) {
    const bool areFolders = action == Gtk::FileChooser::Action::SELECT_FOLDER;
    _chooser = Gtk::FileChooserNative::create(areFolders ? _("Add Folder") : _("Add Files"), *this,
                                              action, _("_Add"), _("_Cancel"));
    _chooser->set_select_multiple(true);
    if (!areFolders)
        _chooser->add_filter(filterForMusic());
    _chooser->signal_response().connect([this](int response) {
        if (response == Gtk::ResponseType::ACCEPT)
            open(pathsIn(*_chooser->get_files()));
    });
    _chooser->set_modal(true);
    _chooser->show();
}

void Window::chooseImage() {
    _chooser = Gtk::FileChooserNative::create(
        _("Burn to an Image"), *this, Gtk::FileChooser::Action::SAVE, _("_Choose"), _("_Cancel"));
    _chooser->set_current_name(_("Disc") + words::extensionFor(project().kind()));
    _chooser->signal_response().connect([this](int response) {
        if (response == Gtk::ResponseType::ACCEPT)
            useImage(pathOf(_chooser->get_file()));
    });
    _chooser->set_modal(true);
    _chooser->show();
}

void Window::useImage(const std::string& chosenPath) {
    if (!isEditable())
        return;
    std::string path = chosenPath;
    const char* const extension = words::extensionFor(project().kind());
    const bool hasExtension = Glib::str_has_suffix(path, extension);
    if (!hasExtension)
        path += extension;
    if (const auto problem = findImageProblem(path))
        return say(textFor(problemForCode(problem->code), problem->info));
    if (_image)
        removeImageDrive(_image->drive);
    // The dialogue has asked about a file of that very name.
    _image = Image{addImageDrive({.path = path}), path, hasExtension};
    _layout.drives.choose(_image->drive);
    wantRefresh();
}

bool Window::isOnImage() const {
    const auto drive = project().drive(_layout.drives.chosen());
    return _image && drive && drive->name == _image->drive;
}

void Window::removeSelected() {
    TrackModel& model = _compilation->model();
    const std::set<std::size_t> rows = model.selectedRows();
    if (rows.empty())
        return;
    _compilation->history().remove(rows);
    if (model.size() > 0) // so that the next key has something to work on
        model.select({std::min(*rows.begin(), model.size() - 1)});
}

void Window::moveSelected(bool down) {
    const std::set<std::size_t> rows = _compilation->model().selectedRows();
    if (rows.empty())
        return;
    if (down)
        moveRows(rows, *rows.rbegin() + 2);
    else
        moveRows(rows, *rows.begin() == 0 ? 0 : *rows.begin() - 1);
}

void Window::moveRows(const std::set<std::size_t>& rows, std::size_t to) {
    if (isEditable())
        _compilation->history().move(rows, to);
}

void Window::eject(DiscDrive::Id drive) {
    project().eject(drive, [this](const std::string& problem) {
        if (!problem.empty())
            say(problem);
    });
}

void Window::burnOrCancel() {
    if (project().isBurning())
        return cancelBurn();
    if (_burning.isStarting())
        return _burning.stop();
    _layout.end.hideEnd();
    const std::string image = isOnImage() ? _image->path : "";
    const bool isReplaced =
        isOnImage() && !_image->mayBeReplaced && Glib::file_test(image, Glib::FileTest::EXISTS);
    _burning.start({.project = &project(),
                    .drive = _layout.drives.chosen(),
                    .title = _layout.title.get_text(),
                    .image = image,
                    .replacesImage = isReplaced});
}

void Window::cancelBurn() {
    _isCanceling = true;
    refreshNotice();
    project().cancelBurn();
}

void Window::burnAnother(const EndBar::Burnt& burnt) {
    if (burnt.image.empty())
        eject(burnt.drive); // the notice then asks for a blank disc
    else
        chooseImage();
}

void Window::openFolderOf(const std::string& image) {
    const std::string folder = Glib::path_get_dirname(image);
    const Glib::RefPtr<Gio::AppLaunchContext> context = get_display()->get_app_launch_context();
    forgetRenderer(*context);
    Gio::AppInfo::launch_default_for_uri_async(Gio::File::create_for_path(folder)->get_uri(),
                                               context);
}

bool Window::on_close_request() {
    if (!project().isBurning())
        return Gtk::ApplicationWindow::on_close_request();
    ask(*this,
        {_("Stop the burn?"),
         isOnImage() ? _("The new image is discarded.") : _("The disc becomes unusable."),
         _("Stop and Close")},
        [this] {
            _isClosing = true;
            if (project().isBurning())
                cancelBurn();
            else
                close();
        });
    return true;
}

// --- What it shows ---

/// Once for many changes.
void Window::wantRefresh() {
    if (!_refreshing.connected())
        _refreshing = Glib::signal_idle().connect([this] {
            _refreshing = {};
            refresh();
            return false;
        });
}

void Window::refresh() {
    _layout.drives.show(project().drives());
    _layout.showList(project().items()->empty());
    _layout.capacity.show(project().capacity(_layout.drives.chosen()));
    const bool isAudio = project().kind() == DiscProject::Kind::Audio;
    (isAudio ? _layout.audio : _layout.data).set_active(true);
    if (!project().isBurning() && !project().isAdding())
        _layout.work.set_reveal_child(false);
    refreshActions();
    refreshNotice();
}

void Window::refreshActions() {
    const bool isStill = !isBurning() && !project().isAdding();
    for (const auto& edit : _edits)
        edit->set_enabled(isEditable());
    _undo->set_enabled(isEditable() && _compilation->history().canUndo());
    _redo->set_enabled(isEditable() && _compilation->history().canRedo());
    const auto drive = project().drive(_layout.drives.chosen());
    _eject->set_enabled(isEditable() && drive && drive->hasDisc && !isOnImage());
    for (Gtk::Widget* const part :
         std::initializer_list<Gtk::Widget*>{&_layout.audio, &_layout.data, &_layout.drives})
        part->set_sensitive(isStill);
    _layout.title.set_sensitive(isEditable()); // somebody may be typing when files are added
}

void Window::refreshNotice() {
    const DiscDrive::Id id = _layout.drives.chosen();
    const auto drive = project().drive(id);
    std::vector<DiscProblem> problems;
    if (drive)
        problems = Burning::problems(project(), id);
    std::string notice = drive && !isOnImage() ? textForDiscAndFreeTime(*drive) : "";
    if (!drive)
        notice = _layout.drives.hasDrive()
                     ? _("The drive was unplugged. Choose another one, or an image file.")
                     : _("Attach a drive that writes CDs, or choose an image file.");
    else if (!isBurning() && !project().items()->empty() && !problems.empty())
        notice = textFor(problems.front());
    _layout.notice.set_text(notice);
    _layout.notice.set_visible(!notice.empty());

    const bool isCancel = isBurning();
    _layout.burn.set_label(isCancel ? _("Cancel") : _("Burn"));
    for (const char* const look : {"suggested-action", "destructive-action"})
        _layout.burn.remove_css_class(look);
    _layout.burn.add_css_class(isCancel ? "destructive-action" : "suggested-action");
    const bool isAdding = _search.isSearching() || project().isAdding();
    const bool isReady = drive && problems.empty() && !isAdding;
    _layout.burn.set_sensitive(isCancel ? !_isCanceling : isReady);
}

void Window::showAdding(const std::string& name, std::size_t index, std::size_t of) {
    const std::string text =
        _("Adding {index} of {count}: {name}",
          {{"index", std::to_string(index)}, {"count", std::to_string(of)}, {"name", name}});
    _layout.showWork(text, static_cast<double>(index) / static_cast<double>(of), true);
}

void Window::showProgress(const DiscBurnProgress& progress) {
    const std::string text = progress.timeLeftText.empty()
                                 ? progress.text
                                 : _("{state}, {time} left",
                                     {{"state", progress.text}, {"time", progress.timeLeftText}});
    _layout.showWork(text, progress.fraction, false);
}

void Window::burnEnded(const DiscBurnEnd& end) {
    _burning.end(end);
    _isCanceling = false;
    if (_isClosing)
        return close();
    const Burning::Burn& burn = _burning.lastBurn();
    _layout.end.show(end, {burn.drive, burn.image});
    if (_image && !burn.image.empty()) {
        _image->mayBeReplaced = false;
        if (end.outcome == DiscBurnEnd::Outcome::Done)
            insertBlankImage(burn.drive);
    }
    wantRefresh();
}

/// For the next burn.
void Window::insertBlankImage(DiscDrive::Id drive) {
    project().eject(drive, [this](const std::string&) {
        if (_image)
            insertBlankDisc(_image->drive);
    });
}

void Window::say(const std::string& text) {
    _layout.end.show({.outcome = DiscBurnEnd::Outcome::Failed, .text = text}, {});
}

} // namespace quarner::window
