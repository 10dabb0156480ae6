// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/util/Paths.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t protectedMusicCode = 0x4D345020; // "M4P "
constexpr std::uint32_t protectedBookCode = 0x4D344220;  // "M4B "

bool isInProtectedSet(const std::string& type) {
    static const std::array<std::string, 4> protectedSet = {
        "m4p", "m4b", Paths::typeStringForCode(protectedMusicCode),
        Paths::typeStringForCode(protectedBookCode)};
    return std::find(protectedSet.begin(), protectedSet.end(), type) != protectedSet.end();
}

/// Readers of a URI drop "folder/.." by its text alone, which is another place than that of the
/// path if the folder is a symbolic link.
fs::path withoutParentSteps(const fs::path& path) {
    if (std::find(path.begin(), path.end(), "..") == path.end())
        return path;
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(path.parent_path(), error);
    return error ? path : folder / path.filename();
}

/// Whether a byte stands for itself in the path of a URI (RFC 3986: pchar and the slash, without
/// the semicolon, which some readers take for the start of parameters).
bool isPlainInUri(char byte) {
    constexpr std::string_view marks = "-._~!$&'()*+,=:@/";
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || marks.find(byte) != std::string_view::npos;
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

std::string Paths::fileUri(const std::string& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    if (error)
        return {};
    std::string uri = "file://";
    for (const char byte : withoutParentSteps(absolute).string()) {
        const auto code = static_cast<unsigned char>(byte);
        if (isPlainInUri(byte))
            uri += byte;
        else
            uri.append(1, '%').append(1, digits[code >> 4U]).append(1, digits[code & 0xFU]);
    }
    return uri;
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
