// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/JsonLine.h"

#include <nlohmann/json.hpp>

namespace quarner::cli {
namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const Value& value);

Json jsonOf(const Dictionary& dictionary) {
    Json object = Json::object();
    for (const auto& [key, value] : dictionary)
        object[key] = jsonOf(value);
    return object;
}

Json jsonOf(const Array& list) {
    Json array = Json::array();
    for (const Value& value : list)
        array.push_back(jsonOf(value));
    return array;
}

Json jsonOfNumber(const Value& value) {
    if (value == Value(value.asBool()))
        return value.asBool();
    if (value == Value(value.asInt64()))
        return value.asInt64();
    return value.asDouble();
}

Json jsonOf(const Value& value) {
    if (const std::string* const text = value.asString())
        return *text;
    if (const Array* const list = value.asArray())
        return jsonOf(*list);
    if (const Dictionary* const dictionary = value.asDictionary())
        return jsonOf(*dictionary);
    if (const Icon* const icon = value.asIcon())
        return icon->names;
    return value.isNumber() ? jsonOfNumber(value) : Json();
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
