// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/applicationwindow.h>

#include <functional>
#include <memory>
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
        std::string replaced; ///< the path of an image that is there already; otherwise empty
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

    /// Asks, and begins the burn if the user agrees to everything.
    void start(Burn burn);
    /// True while a disc is being unmounted for the burn.
    bool isStarting() const { return _isStarting; }
    /// To be called when the burn has ended.
    void end(const DiscBurnEnd& end);

private:
    void unmount();
    void unmounted(const std::string& problem);
    void askBeforeErasing();
    void burn();
    void setStarting(bool isStarting);
    void keepAwake(bool isAwake);
    template <typename... Arguments>
    std::function<void(Arguments...)> call(void (Burning::*step)(Arguments...));

    Gtk::ApplicationWindow& _window;
    const Handlers _handlers;
    Burn _burn;
    bool _isStarting = false;
    unsigned _awake = 0; ///< what GTK returned for keeping awake; 0 for none
    /// Expires with this object, whatever is still under way.
    const std::shared_ptr<char> _life = std::make_shared<char>();
};

} // namespace quarner::window
