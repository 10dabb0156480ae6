// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/view/PeopleView.h"

namespace quarner::cli {

/// For a terminal: the file being added, and later the progress bar, in one line that is drawn
/// over and over.
class TerminalView : public PeopleView {
public:
    using PeopleView::PeopleView;

    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override;

protected:
    void show(const BurnStep& step) override;
};

} // namespace quarner::cli
