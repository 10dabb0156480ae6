// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "quarner/platform/Export.h"
#include "quarner/project/DiscProject.h"

namespace quarner {

/// Edits the list of a project so that each edit can be undone and redone: a host that has an
/// "Undo" calls these operations instead of the project's. Changes that are made without it are
/// taken as part of the edit before them.
///
/// Undoing a removal adds the files again: they are examined as in `DiscProject::add`, appear in
/// the rows where they were, and are reported as refused if they cannot be added any more. Main
/// thread only; nothing throws. It must not outlive the project.
class QUARNER_EXPORT DiscProjectHistory {
public:
    /// How many edits can be undone; older ones are forgotten.
    static constexpr std::size_t mostEdits = 100;

    /// Has no edit to undo at first. Changes that were made to the project before stay.
    explicit DiscProjectHistory(DiscProject& project);

    /// Adds files as `DiscProject::add` does, at the end without a row. Files that are added while
    /// others are being added belong to one edit with them.
    void add(const std::vector<std::string>& paths, std::optional<std::size_t> row = std::nullopt);
    /// Removes rows as `DiscProject::remove` does.
    void remove(const std::set<std::size_t>& rows);
    /// Moves rows as `DiscProject::move` does.
    void move(const std::set<std::size_t>& rows, std::size_t to);
    /// Removes all rows.
    void clear();

    /// Whether there is an edit to undo. False while files are being added. May change with every
    /// change of the list, and when adding has ended.
    bool canUndo() const;
    /// Whether there is an edit to redo, likewise.
    bool canRedo() const;
    /// Makes the list again what it was before the last edit. Does nothing if `canUndo` is false.
    void undo();
    /// Makes the list again what it was after the edit that was undone last. Does nothing if
    /// `canRedo` is false.
    void redo();

private:
    using List = std::shared_ptr<const DiscItems>;

    void beginEdit();
    const List* lastOtherThanNow(const std::vector<List>& lists) const;
    void step(std::vector<List>& from, std::vector<List>& to);
    void restore(const DiscItems& wanted);
    void removeAllBut(const std::set<std::size_t>& kept);

    DiscProject& _project;
    std::vector<List> _done;   ///< the list before each edit
    std::vector<List> _undone; ///< the list before each undoing
};

} // namespace quarner
