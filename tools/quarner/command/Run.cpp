// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/Run.h"

#include <cerrno>
#include <memory>
#include <system_error>

#include "tools/quarner/command/Commands.h"
#include "tools/quarner/text/JsonLine.h"
#include "tools/quarner/view/JsonView.h"
#include "tools/quarner/view/PeopleView.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

std::shared_ptr<View> makeView(Console& console, bool json) {
    return json ? std::shared_ptr<View>(std::make_shared<JsonView>(console))
                : std::make_shared<PeopleView>(console);
}

ExitStatus runQuery(Host& host, const QueryOptions& options, bool json) {
    switch (options.query) {
    case Query::Drives:
        return listDrives(host, options.target, json);
    case Query::Disc:
        return showDisc(host, options.target, json);
    case Query::Eject:
        return ejectDisc(host, options.target, json);
    case Query::Watch:
        return watchDrives(host, options.target, json);
    }
    return ExitStatus::Usage;
}

ExitStatus endJson(Console& console, bool json, ExitStatus status) {
    if (json)
        console.line(jsonExitLine(static_cast<int>(status)));
    return status;
}

} // namespace

ExitStatus runCommand(Host& host, const Command& command) {
    try {
        if (const auto* const options = std::get_if<BurnOptions>(&command.options))
            return burn(host, *options, makeView(host.console, command.json));
        const auto& query = std::get<QueryOptions>(command.options);
        return endJson(host.console, command.json, runQuery(host, query, command.json));
    } catch (const EndedAtOnce&) {
        return endJson(host.console, command.json, ExitStatus::Canceled);
    } catch (const UsageProblem& problem) {
        host.console.error(std::string("quarner: ") + problem.what());
        return endJson(host.console, command.json, ExitStatus::Usage);
    }
}

void reportForcedEnd(Console& console, bool json) {
    console.error("quarner: " +
                  _("cancelled without waiting for a drive or a file that does not respond; a disc "
                    "that was being written may not be usable"));
    endJson(console, json, ExitStatus::Canceled);
}

ExitStatus statusAfterOutput(Console& console, ExitStatus status) {
    const int error = console.outputError();
    if (error == 0 || error == EPIPE)
        return status;
    console.error("quarner: " + _("the output could not be written: {error}",
                                  {{"error", std::generic_category().message(error)}}));
    return status == ExitStatus::Success ? ExitStatus::Failed : status;
}

ExitStatus showMessage(Console& console, const Message& message) {
    if (message.status == ExitStatus::Success)
        console.line(message.text);
    else
        console.error("quarner: " + message.text);
    return endJson(console, message.json && message.status != ExitStatus::Success, message.status);
}

} // namespace quarner::cli
