// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/LibraryMessage.h"

#include <regex>

namespace quarner {
namespace {

/// Key, code and qualifier, as in "[5 26 00]": libburn prints them behind the command.
bool hasSenseData(const std::string& text) {
    static const std::regex triple(R"(\[[0-9A-F] [0-9A-F]{2} [0-9A-F]{2}\])");
    return std::regex_search(text, triple);
}

bool isMoreSevere(const LibraryMessage& message, const LibraryMessage* than) {
    return than == nullptr || message.severity > than->severity;
}

} // namespace

std::string failureReason(const std::deque<LibraryMessage>& messages, std::uint64_t moment) {
    const LibraryMessage* worst = nullptr;
    const LibraryMessage* command = nullptr;
    for (const LibraryMessage& message : messages) {
        if (message.moment <= moment)
            continue;
        if (isMoreSevere(message, worst))
            worst = &message;
        if (isMoreSevere(message, command) && hasSenseData(message.text))
            command = &message;
    }
    const LibraryMessage* const reason = command != nullptr ? command : worst;
    return reason == nullptr ? std::string() : reason->text;
}

} // namespace quarner
