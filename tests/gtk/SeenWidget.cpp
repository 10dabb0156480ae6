// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/SeenWidget.h"

#include <utility>

namespace quarner::testing {
namespace {

std::string taken(char* text) {
    const std::unique_ptr<char, decltype(&g_free)> owner(text, g_free);
    return text == nullptr ? "" : text;
}

/// Whether nothing is looked for in such a widget: each look is a call to the other program.
bool isLeaf(const std::string& role) {
    return role == "label" || role == "list item" || role == "scroll bar";
}

void describe(const SeenWidget& widget, std::size_t depth, std::string& text) {
    const SeenWidget::Place place = widget.place();
    text += std::string(2 * depth, ' ') + widget.role() + " '" + widget.name() + "' " +
            std::to_string(place.x) + "," + std::to_string(place.y) + " " +
            std::to_string(place.width) + "x" + std::to_string(place.height) +
            (widget.isSensitive() ? "" : " insensitive") + (widget.isFocused() ? " focused" : "") +
            "\n";
    for (const SeenWidget& child : widget.children())
        describe(child, depth + 1, text);
}

} // namespace

/// libatspi does not expect to be asked about a program that has ended.
bool SeenWidget::isThere() const {
    const AtspiApplication* const program = ATSPI_OBJECT(_object.get())->app;
    return program != nullptr && program->bus_name != nullptr;
}

std::string SeenWidget::name() const {
    return !isThere() ? "" : taken(atspi_accessible_get_name(_object.get(), nullptr));
}

std::string SeenWidget::role() const {
    return !isThere() ? "" : taken(atspi_accessible_get_role_name(_object.get(), nullptr));
}

std::string SeenWidget::text() const {
    if (!isThere())
        return {};
    const std::unique_ptr<AtspiText, decltype(&g_object_unref)> text(
        atspi_accessible_get_text_iface(_object.get()), g_object_unref);
    return text ? taken(atspi_text_get_text(
                      text.get(), 0, atspi_text_get_character_count(text.get(), nullptr), nullptr))
                : "";
}

bool SeenWidget::hasState(AtspiStateType state) const {
    if (!isThere())
        return {};
    const std::unique_ptr<AtspiStateSet, decltype(&g_object_unref)> states(
        atspi_accessible_get_state_set(_object.get()), g_object_unref);
    return states && atspi_state_set_contains(states.get(), state) == TRUE;
}

std::vector<SeenWidget> SeenWidget::children() const {
    if (!isThere())
        return {};
    std::vector<SeenWidget> children;
    const int count = atspi_accessible_get_child_count(_object.get(), nullptr);
    for (int i = 0; i < count; ++i)
        if (auto* const child = atspi_accessible_get_child_at_index(_object.get(), i, nullptr))
            children.emplace_back(child);
    return children;
}

SeenWidget::Place SeenWidget::place() const {
    if (!isThere())
        return {};
    const std::unique_ptr<AtspiComponent, decltype(&g_object_unref)> component(
        atspi_accessible_get_component_iface(_object.get()), g_object_unref);
    if (!component)
        return {};
    const std::unique_ptr<AtspiRect, decltype(&g_free)> extents(
        atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_WINDOW, nullptr), g_free);
    return extents ? Place{extents->x, extents->y, extents->width, extents->height} : Place{};
}

void SeenWidget::activate() const {
    if (!isThere())
        return;
    const std::unique_ptr<AtspiAction, decltype(&g_object_unref)> action(
        atspi_accessible_get_action_iface(_object.get()), g_object_unref);
    if (action)
        atspi_action_do_action(action.get(), 0, nullptr);
}

bool SeenWidget::isVisible() const { return place().width > 0 && place().height > 0; }

std::optional<SeenWidget> SeenWidget::find(const Condition& condition) const {
    for (const SeenWidget& child : children()) {
        if (condition(child))
            return child;
        if (isLeaf(child.role()))
            continue;
        if (auto found = child.find(condition))
            return found;
    }
    return std::nullopt;
}

void SeenWidget::visit(const std::function<void(const SeenWidget&)>& visitor) const {
    visitor(*this);
    for (const SeenWidget& child : children())
        child.visit(visitor);
}

std::optional<SeenWidget> seenProgram(const std::string& name) {
    const SeenWidget desktop(atspi_get_desktop(0));
    for (SeenWidget& program : desktop.children())
        if (program.name() == name)
            return std::move(program);
    return std::nullopt;
}

std::string treeOf(const SeenWidget& widget) {
    std::string text;
    describe(widget, 0, text);
    return text;
}

} // namespace quarner::testing
