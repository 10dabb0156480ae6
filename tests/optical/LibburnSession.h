// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quarner {

/// What a session of libburn with one drive can do, for tests of the drive: nothing but libburn
/// stands between. One at a time in a process.
class LibburnSession {
public:
    /// Takes the drive of a node; `isGrabbed` tells whether that worked.
    explicit LibburnSession(const std::string& node);
    /// Gives it back.
    ~LibburnSession();
    LibburnSession(const LibburnSession&) = delete;
    LibburnSession& operator=(const LibburnSession&) = delete;

    bool isGrabbed() const;
    std::string vendor() const;
    std::string product() const;
    /// The number of the MMC standard for the kind of disc; 0 without one.
    int profile() const;
    bool isBlank() const;
    bool isAppendable() const;
    bool isFull() const;
    bool isErasable() const;
    /// Sectors that a blank or appendable disc still takes.
    std::int64_t freeSectors() const;
    /// In kB/s, as libburn lists them.
    std::vector<int> writeSpeeds() const;
    /// Where the tracks on the disc start, and at last the lead-out.
    std::vector<int> trackStarts() const;

    struct Track {
        std::vector<std::byte> content;
        bool isAudio = true;
        int preGap = 0; ///< beyond the one that the first track has anyway
    };
    /// Writes a session, and answers whether libburn takes it for written well.
    bool burn(const std::vector<Track>& tracks, bool isAtOnce, bool isMultiSession = false);
    /// Makes a rewritable disc blank.
    bool blank();
    void eject();

    std::optional<std::vector<std::byte>> readData(int sector, int count);
    std::optional<std::vector<std::byte>> readAudio(int sector, int count);

private:
    class Library;
    const std::unique_ptr<Library> _library;
};

} // namespace quarner
