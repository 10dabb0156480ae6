// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Burning.h"

#include <giomm/notification.h>
#include <glibmm/miscutils.h>
#include <gtkmm/application.h>

#include <utility>

#include "quarner/desktop.h"
#include "quarner/display.h"
#include "tools/quarner-gtk/MountedDisc.h"
#include "tools/quarner-gtk/Question.h"
#include "tools/quarner-gtk/Sentences.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr char notificationId[] = "burn-ended";

Glib::RefPtr<Gio::Mount> mountIn(const DiscProject& project, DiscDrive::Id id) {
    const auto drive = project.drive(id);
    return drive ? mountOf(opticalDriveNode(drive->name)) : Glib::RefPtr<Gio::Mount>();
}

} // namespace

Burning::Burning(Gtk::ApplicationWindow& window, Handlers handlers)
    : _window(window), _handlers(std::move(handlers)) {}

Burning::~Burning() {
    keepAwake(false);
    withdrawNotification();
}

/// A step of this object as a function that does nothing once the object is gone.
template <typename... Arguments>
std::function<void(Arguments...)> Burning::call(void (Burning::*step)(Arguments...)) {
    return [this, step, life = std::weak_ptr(_life)](Arguments... arguments) {
        if (!life.expired())
            (this->*step)(std::forward<Arguments>(arguments)...);
    };
}

bool Burning::isMounted(const DiscProject& project, DiscDrive::Id drive) {
    return mountIn(project, drive) != nullptr;
}

/// A mounted disc is in use and cannot be examined, so nothing is known about it yet.
std::vector<DiscProblem> Burning::problems(const DiscProject& project, DiscDrive::Id drive) {
    if (!project.items()->empty() && isMounted(project, drive))
        return {};
    return project.problems(drive);
}

void Burning::start(Burn burn) {
    _burn = std::move(burn);
    _askedChange.reset();
    setStarting(true);
    if (const auto mount = mountIn(*_burn.project, _burn.drive))
        askBeforeUnmounting(mount->get_name());
    else
        examine();
}

void Burning::stop() {
    _life = std::make_shared<char>();
    setStarting(false);
}

void Burning::askBeforeUnmounting(const std::string& disc) {
    ask(_window,
        {_("Unmount “{disc}”?", {{"disc", safeText(disc)}}),
         _("The disc is mounted. Programs that read it have to be closed first."), _("Unmount")},
        call(&Burning::unmount), call(&Burning::stop));
}

void Burning::unmount() {
    const auto mount = mountIn(*_burn.project, _burn.drive);
    if (!mount)
        return examine();
    window::unmount(mount, _window,
                    [this, life = std::weak_ptr(_life)](const std::string& problem) {
                        if (!life.expired())
                            unmounted(problem);
                    });
}

void Burning::unmounted(const std::string& problem) {
    if (problem.empty())
        examine();
    else
        refuse(_("The disc could not be unmounted: {reason}", {{"reason", safeText(problem)}}));
}

void Burning::examine() { _burn.project->examine(_burn.drive, call(&Burning::examined)); }

void Burning::examined() {
    const auto problems = _burn.project->problems(_burn.drive);
    const auto drive = _burn.project->drive(_burn.drive);
    if (!problems.empty())
        refuse(textFor(problems.front()));
    else if (_burn.replacesImage)
        askBeforeReplacing();
    else if (drive && !drive->isBlank && drive->changeCount != _askedChange)
        askBeforeErasing(*drive);
    else
        burn();
}

void Burning::askBeforeReplacing() {
    const std::string name = safeText(Glib::path_get_basename(_burn.image));
    ask(_window,
        {_("Replace “{image}”?", {{"image", name}}),
         _("The image exists already. The burn replaces it once the new one is complete."),
         _("Replace")},
        call(&Burning::burn), call(&Burning::stop));
}

/// The disc is examined again after the reply, because another one may be in the drive by then.
void Burning::askBeforeErasing(const DiscDrive& drive) {
    const bool isAnother = _askedChange.has_value();
    _askedChange = drive.changeCount;
    ask(_window,
        {isAnother ? _("The disc may have been replaced. Erase this one?") : _("Erase the disc?"),
         _("The disc is not blank. Everything on it will be lost."), _("Erase and Burn")},
        call(&Burning::examine), call(&Burning::stop));
}

void Burning::burn() {
    setStarting(false);
    withdrawNotification();
    keepAwake(true);
    if (!_burn.project->burn(_burn.drive, _burn.title))
        keepAwake(false);
}

void Burning::refuse(const std::string& text) {
    setStarting(false);
    _handlers.refused(text);
}

void Burning::end(const DiscBurnEnd& end) {
    keepAwake(false);
    if (end.outcome == DiscBurnEnd::Outcome::Canceled)
        return;
    const bool isDone = end.outcome == DiscBurnEnd::Outcome::Done;
    const auto notification =
        Gio::Notification::create(isDone ? _("The disc is ready") : _("The burn has failed"));
    notification->set_body(textFor(end));
    _window.get_application()->send_notification(notificationId, notification);
}

void Burning::withdrawNotification() {
    if (const auto application = _window.get_application())
        application->withdraw_notification(notificationId);
}

void Burning::setStarting(bool isStarting) {
    _isStarting = isStarting;
    _handlers.changed();
}

void Burning::keepAwake(bool isAwake) {
    const auto application = _window.get_application();
    if (!application || isAwake == (_awake != 0))
        return;
    if (isAwake)
        _awake = application->inhibit(_window,
                                      Gtk::Application::InhibitFlags::LOGOUT |
                                          Gtk::Application::InhibitFlags::SUSPEND,
                                      _("A disc is being burnt"));
    else
        application->uninhibit(std::exchange(_awake, 0));
}

} // namespace quarner::window
