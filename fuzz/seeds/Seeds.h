// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace quarner::fuzz {

/// Where the regression inputs go: a folder for each target. Throws if a file cannot be written.
class SeedFolder {
public:
    explicit SeedFolder(std::string path) : _path(std::move(path)) {}

    /// Writes one input of a target; the name says what it is.
    void put(std::string_view target, std::string_view name, std::string_view bytes) const;

private:
    const std::string _path;
};

/// Builds an input in the form in which `Input` reads it.
class Bytes {
public:
    template <typename Number>
    requires(std::is_arithmetic_v<Number>) Bytes& number(Number number) {
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        _bytes.append(bytes, sizeof number);
        return *this;
    }
    Bytes& byte(unsigned value) { return number(static_cast<unsigned char>(value)); }
    /// At most 255 bytes.
    Bytes& text(std::string_view text) {
        byte(static_cast<unsigned>(text.size()));
        return rest(text);
    }
    Bytes& rest(std::string_view bytes) {
        _bytes += bytes;
        return *this;
    }

    operator std::string_view() const { return _bytes; }

private:
    std::string _bytes;
};

// The inputs of the targets, by subject. What a fuzzer has found stays here, as small as it got.
void putTextSeeds(const SeedFolder& folder);
void putDiscSeeds(const SeedFolder& folder);
void putStatusSeeds(const SeedFolder& folder);
void putWorkerSeeds(const SeedFolder& folder);
void putMpegSeeds(const SeedFolder& folder);
void putMp4Seeds(const SeedFolder& folder);

} // namespace quarner::fuzz
