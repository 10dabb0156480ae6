// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/platform/Export.h"

namespace quarner {

/// A play time: `value` ticks, `scale` of them per second. A scale of 0 means unknown.
struct QTTime {
    std::int64_t value = 0; ///< in ticks
    std::int64_t scale = 0; ///< ticks per second; 0 if the time is unknown
    std::int64_t flags = 0; ///< not read by this library
};

/// An opened media file.
class QUARNER_EXPORT QTMovie {
public:
    QTMovie() = default;
    virtual ~QTMovie();
    QTMovie(const QTMovie&) = delete;
    QTMovie& operator=(const QTMovie&) = delete;

    /// Returns the play time, with a scale of 0 if it is unknown. Called on the main thread.
    virtual QTTime duration() const = 0;
};

/// Why a file is no movie, or one that is too short.
struct MovieProblem {
    /// What is wrong.
    enum class Kind {
        Unreadable, ///< the file cannot be read
        NoSound,    ///< no sound that can be decoded was found in it
        Damaged,    ///< too much of its sound is damaged
        TooShort    ///< it plays for less than a second
    };

    Kind kind = Kind::Unreadable; ///< what is wrong, for programs
    std::string detail = {};      ///< a few English words without the path; may be empty

    /// Compares every member.
    bool operator==(const MovieProblem&) const = default;
};

/// What a file says about its own content, for display. Every text is valid UTF-8 without control
/// characters, has at most `mostBytes` bytes, and is empty if the file does not say it.
struct MediaTags {
    /// The size of a text, at most. A longer one is cut at a character.
    static constexpr std::size_t mostBytes = 1024;

    std::string title = {};  ///< of the piece
    std::string artist = {}; ///< of the piece, not of the album
    std::string album = {};  ///< the album's title
    std::uint32_t track = 0; ///< the number on its album, from 1; 0 if the file does not say it

    /// Compares every member.
    bool operator==(const MediaTags&) const = default;
};

/// The media service: which files can be played, and their duration.
class QUARNER_EXPORT MediaService {
public:
    MediaService() = default;
    virtual ~MediaService();
    MediaService(const MediaService&) = delete;
    MediaService& operator=(const MediaService&) = delete;

    /// Opens a file. Returns null if it is missing or is no media file with sound. Called on the
    /// main thread.
    virtual std::unique_ptr<QTMovie> movieWithFile(const std::string& path) = 0;

    /// Asked often while a movie is prepared, on the same thread; false ends the work.
    using MayContinue = std::function<bool()>;

    /// Does in advance what `movieWithFile` would need long for, and keeps the result for the next
    /// `movieWithFile` of this path, even if the file changes before that, so that the main thread
    /// is not held up. Called on a background thread before each `movieWithFile` of a run. Returns
    /// false if `mayContinue`, which is never empty, ended it; true otherwise, also for a file that
    /// cannot be opened. Does nothing by default.
    virtual bool prepareMovie(const std::string& path, const MayContinue& mayContinue);

    /// Returns the types that can be opened, as file-name extensions and as type codes in single
    /// quotes. `flags` 0 asks for the common ones only.
    virtual std::vector<std::string> movieFileTypes(std::uint32_t flags) = 0;

    /// Returns why a file that was refused is no movie, or one that is too short; `std::nullopt` if
    /// neither is known. Must return soon; the default opens the movie, and a service for which
    /// that takes long returns what it noted when it last opened it. Called on the main thread.
    virtual std::optional<MovieProblem> movieProblem(const std::string& path);

    /// The same in a few words for a user: "unreadable: Input/output error". Empty if there is no
    /// problem. The default words what `movieProblem` returns.
    virtual std::string problemWithMovie(const std::string& path);

    /// Reads the tags of a file, but not its sound. Empty, as by default, if it has none or cannot
    /// be read. Any thread; may wait for the disk.
    virtual MediaTags tags(const std::string& path);
};

} // namespace quarner
