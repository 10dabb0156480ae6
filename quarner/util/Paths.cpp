// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/util/Paths.h"

#include <algorithm>
#include <array>

#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

constexpr std::uint32_t protectedMusicCode = 0x4D345020; // "M4P "
constexpr std::uint32_t protectedBookCode = 0x4D344220;  // "M4B "

bool isInProtectedSet(const std::string& type) {
    static const std::array<std::string, 4> protectedSet = {
        "m4p", "m4b", Paths::typeStringForCode(protectedMusicCode),
        Paths::typeStringForCode(protectedBookCode)};
    return std::find(protectedSet.begin(), protectedSet.end(), type) != protectedSet.end();
}

} // namespace

std::string Paths::realPath(const std::string& path) {
    return currentPlatform()->files->resolveAlias(path).value_or(path);
}

bool Paths::isQuickTimeProtectedFile(const std::string& path) {
    const std::optional<FileAttributes> attributes = currentPlatform()->files->attributes(path);
    if (!attributes)
        return true;
    if (isInProtectedSet(lowercaseExtension(path)))
        return true;
    return isInProtectedSet(typeStringForCode(attributes->hfsTypeCode.value_or(0)));
}

std::optional<std::string> Paths::hfsType(const std::string& path) {
    const std::optional<FileAttributes> attributes = currentPlatform()->files->attributes(path);
    if (!attributes)
        return std::nullopt;
    return typeStringForCode(attributes->hfsTypeCode.value_or(0));
}

std::string Paths::typeStringForCode(std::uint32_t code) {
    std::string text = "'";
    for (const int shift : {24, 16, 8, 0})
        text += static_cast<char>(code >> shift & 0xFFU);
    return text + '\'';
}

std::string Paths::lowercaseExtension(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/');
    if (end == std::string::npos)
        return {};
    const std::string bare = path.substr(0, end + 1);
    const std::string name = bare.substr(bare.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    if (dot == std::string::npos)
        return {};
    std::string extension = name.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return extension;
}

} // namespace quarner
