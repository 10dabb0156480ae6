// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/applicationwindow.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/project/DiscProject.h"

namespace quarner::window {

/// The burn as its user meets it: asks what has to be asked first, keeps the machine awake, and
/// tells the desktop how it ended. Main thread only.
class Burning {
public:
    struct Burn {
        DiscProject* project = nullptr; ///< which must live until the burn has ended
        DiscDrive::Id drive = 0;
        std::string title;
        std::string image;          ///< its path; empty for a disc
        bool replacesImage = false; ///< it is there already
    };
    struct Handlers {
        std::function<void()> changed;                        ///< `isStarting` has changed
        std::function<void(const std::string& text)> refused; ///< the burn could not begin
    };

    Burning(Gtk::ApplicationWindow& window, Handlers handlers);
    ~Burning();
    Burning(const Burning&) = delete;
    Burning& operator=(const Burning&) = delete;

    /// What stands in the way of a burn, except a mounted disc, which `start` unmounts.
    static std::vector<DiscProblem> problems(const DiscProject& project, DiscDrive::Id drive);
    static bool isMounted(const DiscProject& project, DiscDrive::Id drive);

    /// Examines the disc, asks, and begins the burn if the user agrees to everything.
    void start(Burn burn);
    /// True from a call of `start` until the burn begins, is refused, or is not wanted any more.
    /// What is burnt must not change while it is true.
    bool isStarting() const { return _isStarting; }
    /// Gives the start up. A disc that is being unmounted stays unmounted.
    void stop();
    /// The one that was started last.
    const Burn& lastBurn() const { return _burn; }
    /// To be called when the burn has ended.
    void end(const DiscBurnEnd& end);

private:
    void askBeforeUnmounting(const std::string& disc);
    void unmount();
    void unmounted(const std::string& problem);
    void examine();
    void examined();
    void askBeforeReplacing();
    void askBeforeErasing(const DiscDrive& drive);
    void burn();
    void refuse(const std::string& text);
    void setStarting(bool isStarting);
    void keepAwake(bool isAwake);
    void withdrawNotification();
    template <typename... Arguments>
    std::function<void(Arguments...)> call(void (Burning::*step)(Arguments...));

    Gtk::ApplicationWindow& _window;
    const Handlers _handlers;
    Burn _burn;
    bool _isStarting = false;
    std::optional<std::uint64_t> _askedChange; ///< `changeCount` of the disc that was asked about
    unsigned _awake = 0;                       ///< what GTK returned for keeping awake; 0 for none
    /// Expires with this object and with `stop`, whatever is still under way.
    std::shared_ptr<char> _life = std::make_shared<char>();
};

} // namespace quarner::window
