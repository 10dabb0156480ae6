// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/TrackList.h"

#include <gtkmm/dragsource.h>
#include <gtkmm/widgetpaintable.h>

#include <utility>

#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

TrackRow& rowOf(const Glib::RefPtr<Gtk::ListItem>& item) {
    return dynamic_cast<TrackRow&>(*item->get_child());
}

/// Files are copied, and rows, which offer nothing else, are moved.
Gdk::DragAction actionOf(const Gtk::DropTarget& target) {
    const auto drop = target.get_current_drop();
    const bool isCopied =
        drop && (drop->get_actions() & Gdk::DragAction::COPY) != Gdk::DragAction{};
    return isCopied ? Gdk::DragAction::COPY : Gdk::DragAction::MOVE;
}

bool isInLowerHalf(const TrackRow& row, double y) { return y > row.get_height() / 2.0; }

} // namespace

TrackList::TrackList(TrackModel& model, bool showsTime, Handlers handlers)
    : _model(model), _showsTime(showsTime), _handlers(std::move(handlers)) {
    const auto factory = Gtk::SignalListItemFactory::create();
    factory->signal_setup().connect([this](const auto& item) { makeRow(item); });
    factory->signal_bind().connect([](const auto& item) {
        const auto track = std::dynamic_pointer_cast<Track>(item->get_item());
        rowOf(item).show(track->item(), item->get_position());
    });
    _view.set_model(_model.selection());
    _view.set_factory(factory);
    _view.set_enable_rubberband(true);
    setSpokenName(_view, _("Files for the disc"));
    set_policy(Gtk::PolicyType::NEVER, Gtk::PolicyType::AUTOMATIC);
    set_child(_view);

    const auto target = makeDropTarget();
    target->signal_drop().connect(
        [this](const auto& value, double, double) { return drop(value, _model.size()); }, false);
    add_controller(target);
}

void TrackList::makeRow(const Glib::RefPtr<Gtk::ListItem>& item) {
    auto* const row = Gtk::make_managed<TrackRow>(_showsTime);
    item->set_child(*row);
    // The row goes with its item.
    Gtk::ListItem* const owner = item.get();
    item->property_position().signal_changed().connect([owner, row] {
        if (owner->get_position() != GTK_INVALID_LIST_POSITION)
            row->setRow(owner->get_position());
    });
    letDrag(*row);
    letDropOn(*row);
}

void TrackList::letDrag(TrackRow& row) {
    const auto source = Gtk::DragSource::create();
    source->set_actions(Gdk::DragAction::MOVE);
    source->signal_prepare().connect(
        [this, &row](double, double) { return contentFor(rowsDraggedFrom(row.row())); }, false);
    source->signal_drag_begin().connect(
        [&row, weak = std::weak_ptr(source)](const auto&) {
            if (const auto strong = weak.lock())
                strong->set_icon(Gtk::WidgetPaintable::create(row), 0, 0);
        },
        false);
    row.add_controller(source);
}

void TrackList::letDropOn(TrackRow& row) {
    const auto target = makeDropTarget();
    // The row has the target.
    target->signal_motion().connect(
        [&row, within = target.get()](double, double y) {
            row.mark(isInLowerHalf(row, y) ? TrackRow::Mark::Below : TrackRow::Mark::Above);
            return actionOf(*within);
        },
        false);
    target->signal_leave().connect([&row] { row.mark(TrackRow::Mark::None); });
    target->signal_drop().connect(
        [this, &row](const auto& value, double, double y) {
            row.mark(TrackRow::Mark::None);
            return drop(value, row.row() + (isInLowerHalf(row, y) ? 1 : 0));
        },
        false);
    row.add_controller(target);
}

bool TrackList::drop(const Glib::ValueBase& value, std::size_t row) {
    const DroppedContent content = droppedContent(value);
    if (const auto* const dragged = std::get_if<DraggedRows>(&content))
        _handlers.rowsDropped(rowsWith(dragged->ids), row);
    else if (const auto* const paths = std::get_if<std::vector<std::string>>(&content))
        _handlers.filesDropped(*paths, row);
    return content.index() != 0;
}

/// All selected rows if this is one of them.
DraggedRows TrackList::rowsDraggedFrom(std::size_t row) const {
    std::set<std::size_t> rows = _model.selectedRows();
    if (!rows.contains(row))
        rows = {row};
    DraggedRows dragged;
    for (const std::size_t one : rows)
        dragged.ids.insert(_model.track(one)->item().id);
    return dragged;
}

std::set<std::size_t> TrackList::rowsWith(const std::set<std::uint64_t>& ids) const {
    std::set<std::size_t> rows;
    for (std::size_t row = 0; row < _model.size(); ++row)
        if (ids.contains(_model.track(row)->item().id))
            rows.insert(rows.end(), row);
    return rows;
}

} // namespace quarner::window
