// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// For programs: one JSON object a line for every record of the project, for the operations of a
/// view, and a last one for the exit status; see docs/json.md. What is meant for people goes to the
/// error stream.
class JsonView : public View {
public:
    using View::View;

    void record(const std::string& event, const Arguments& arguments) override;
    void compilationIsComplete(const Compilation& compilation) override;
    void waitsFor(const DiscProblem& problem) override;
    void burnIsRefused(const DiscProblem& problem) override;
    void ejectionDidEnd(const std::string& driveName, const std::string& problem) override;
    void didEnd(ExitStatus status, const std::string& outcome) override;
};

} // namespace quarner::cli
