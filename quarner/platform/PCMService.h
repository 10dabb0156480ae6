// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// The exact length of a file, without the padding that encoders add at both ends.
struct PCMLength {
    std::uint64_t sourceSamples = 0; ///< samples per channel at the file's own rate
    std::uint32_t sourceRate = 0;    ///< samples per second
    std::uint64_t discSamples = 0;   ///< stereo samples after conversion to 44.1 kHz
};

/// A file decoded to the format of an audio CD: 44.1 kHz, 16 bits, stereo, left sample first.
class QUARNER_EXPORT PCMStream {
public:
    PCMStream() = default;
    virtual ~PCMStream();
    PCMStream(const PCMStream&) = delete;
    PCMStream& operator=(const PCMStream&) = delete;

    /// Fills the buffer, whose size is even, with stereo pairs in the byte order of this machine.
    /// Returns the number of 16-bit values that were filled: fewer than the buffer's size only at
    /// the end of the file. The stream delivers exactly `PCMLength::discSamples` pairs; a damaged
    /// passage becomes silence of the same length. Returns `std::nullopt` if the file cannot be
    /// read any further.
    virtual std::optional<std::size_t> read(std::span<std::int16_t> samples) = 0;

    /// Returns why the last `read` failed, in a few words without the path: "Input/output error".
    /// Empty, as by default, if that is not known.
    virtual std::string problem() const;
};

/// Measures and decodes audio files. Every operation may be called on any thread. Several streams
/// may be read at the same time, each on one thread at a time. Nothing throws.
class QUARNER_EXPORT PCMService {
public:
    PCMService() = default;
    virtual ~PCMService();
    PCMService(const PCMService&) = delete;
    PCMService& operator=(const PCMService&) = delete;

    /// Returns the exact length of a file: what a stream of it delivers. Returns nothing if it
    /// holds no sound that can be decoded. Logs nothing: reporting problems with the file is up to
    /// the caller.
    virtual std::optional<PCMLength> measure(const std::string& path) = 0;

    /// Asked often while a file is measured, on the thread that measures it; false ends the work.
    using MayContinue = std::function<bool()>;

    /// The same, but returns nothing soon after `mayContinue` has returned false. An empty
    /// function never ends it. A service that always measures at once need not override this.
    virtual std::optional<PCMLength> measureWhile(const std::string& path,
                                                  const MayContinue& mayContinue);

    /// Opens a file for decoding. Returns null if that is not possible. May log what is wrong with
    /// the file.
    virtual std::unique_ptr<PCMStream> open(const std::string& path) = 0;

    /// Returns why the file at a path could not be measured or opened when that last failed, in a
    /// few words without the path. Reads no file. Empty, as by default, if that is not known.
    virtual std::string problemWith(const std::string& path);

    /// Returns whether that problem is damage in the file rather than a failure to read it. False
    /// by default.
    virtual bool isDamaged(const std::string& path);
};

} // namespace quarner
