// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/JsonLine.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

namespace quarner::cli {
namespace {

using Json = nlohmann::ordered_json;

Json jsonOfNumber(const Value& value) {
    if (value == Value(value.asBool()))
        return value.asBool();
    if (value == Value(value.asInt64()))
        return value.asInt64();
    return value.asDouble();
}

Json jsonOf(const Value& value) {
    Json json;
    if (const std::string* const text = value.asString())
        json = *text;
    else if (const Icon* const icon = value.asIcon())
        json = icon->names;
    else if (const Array* const list = value.asArray())
        std::transform(list->begin(), list->end(), std::back_inserter(json = Json::array()),
                       jsonOf);
    else if (const Dictionary* const dictionary = value.asDictionary())
        for (json = Json::object(); const auto& [key, entry] : *dictionary)
            json[key] = jsonOf(entry);
    else if (value.isNumber())
        json = jsonOfNumber(value);
    return json;
}

} // namespace

std::string jsonLine(std::string_view event, const JsonArguments& arguments) {
    Json line = {{"event", event}};
    for (const auto& [key, argument] : arguments)
        line[key] = jsonOf(argument);
    return line.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string jsonExitLine(int status) { return jsonLine("exit", {{"status", status}}); }

} // namespace quarner::cli
