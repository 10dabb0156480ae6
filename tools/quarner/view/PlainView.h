// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "tools/quarner/view/PeopleView.h"

namespace quarner::cli {

/// For a file or a pipe: a line for each file that is added, for each step of the burn, and for
/// every tenth of its progress.
class PlainView : public PeopleView {
public:
    using PeopleView::PeopleView;

    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override;

protected:
    void show(const BurnStep& step) override;

private:
    std::string _lastStep;
    int _lastTenth = 0;
};

} // namespace quarner::cli
