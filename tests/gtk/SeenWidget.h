// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atspi/atspi.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quarner::testing {

/// A widget of another program, as assistive programs see it.
class SeenWidget {
public:
    explicit SeenWidget(AtspiAccessible* taken) : _object(taken, g_object_unref) {}

    std::string name() const;
    std::string role() const; ///< "push button"
    std::string text() const; ///< what stands in a text field
    bool isSensitive() const { return hasState(ATSPI_STATE_SENSITIVE); }
    bool isModal() const { return hasState(ATSPI_STATE_MODAL); }
    bool isFocused() const { return hasState(ATSPI_STATE_FOCUSED); }
    std::vector<SeenWidget> children() const;

    /// Does what a click does.
    void activate() const;

    /// In its window.
    struct Place {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };
    Place place() const;
    bool isVisible() const;

    /// The first widget below this one, in depth, that meets the condition.
    using Condition = std::function<bool(const SeenWidget&)>;
    std::optional<SeenWidget> find(const Condition& condition) const;
    void visit(const std::function<void(const SeenWidget&)>& visitor) const;

private:
    bool isThere() const;
    bool hasState(AtspiStateType state) const;

    std::shared_ptr<AtspiAccessible> _object;
};

/// The program with this name; `std::nullopt` until it is on the accessibility bus.
std::optional<SeenWidget> seenProgram(const std::string& name);

/// All of it, for the message of a test that fails.
std::string treeOf(const SeenWidget& widget);

} // namespace quarner::testing
