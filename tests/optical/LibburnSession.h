// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quarner {

/// A session of libburn with one drive, for tests of the emulated drive without this project's
/// adapter. One at a time in a process.
class LibburnSession {
public:
    /// Opens the drive of a node; `isGrabbed` returns whether that worked.
    explicit LibburnSession(const std::string& node);
    /// Releases the drive.
    ~LibburnSession();
    LibburnSession(const LibburnSession&) = delete;
    LibburnSession& operator=(const LibburnSession&) = delete;

    bool isGrabbed() const;
    std::string vendor() const;
    std::string product() const;
    /// The profile number (MMC) of the disc; 0 without one.
    int profile() const;
    bool isBlank() const;
    bool isAppendable() const;
    bool isFull() const;
    bool isErasable() const;
    /// The free sectors of a blank or appendable disc.
    std::int64_t freeSectors() const;
    /// In kB/s, as libburn lists them.
    std::vector<int> writeSpeeds() const;
    /// The start of each track on the disc and of the lead-out.
    std::vector<int> trackStarts() const;

    struct Track {
        std::vector<std::byte> content;
        bool isAudio = true;
        int preGap = 0; ///< in addition to the first track's own
    };
    /// Writes a session. Returns whether libburn reports success.
    bool burn(const std::vector<Track>& tracks, bool isAtOnce, bool isMultiSession = false);
    /// Blanks a rewritable disc.
    bool blank();
    void eject();

    std::optional<std::vector<std::byte>> readData(int sector, int count);
    std::optional<std::vector<std::byte>> readAudio(int sector, int count);

private:
    class Library;
    const std::unique_ptr<Library> _library;
};

} // namespace quarner
