// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "quarner/front/Quarner.h"
#include "quarner/platform/DRCDTextBlock.h"
#include "quarner/platform/DRNotificationCenter.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// Compiles and burns an audio CD: see `Quarner` for what each operation does. Get one from
/// `Quarner::audioCDBurner`.
class QUARNER_EXPORT AudioCDBurner : public Quarner {
public:
    AudioCDBurner();
    ~AudioCDBurner() override;

    // --- Adding files (AudioIngestion.cpp) ---

    bool addFiles(const std::vector<std::string>& paths) override;

    /// Always "mp3", "MP3", "m4a", "M4A", in this order, whatever the platform could play.
    std::vector<std::string> supportedFileTypes() override;

    // --- The list (AudioListEditing.cpp) ---

    /// Only an item that is a track is removed.
    void removeItem(const BurnItemRef& item) override;
    void removeItems(const BurnItemList& items) override;
    BurnItemRef child(std::uint64_t index, const BurnItemRef& ofBurnItem) const override;
    std::uint64_t numberOfChildrenOfBurnItem(const BurnItemRef& item) const override;
    std::shared_ptr<const Dictionary> propertyOfBurnItem(const BurnItemRef& item) const override;
    void moveBurnItem(const std::set<std::uint64_t>& indexes, std::int64_t to) override;

    // --- Capacity (AudioCapacity.cpp) ---

    /// Whole seconds of the tracks and their pre-gaps; frames carry from track to track, and
    /// those of the last, incomplete second are dropped.
    std::uint64_t usedCapacity() const override;
    /// Compares whole seconds; content that fills the disc exactly fits.
    bool isContentOverflowForDevice(const QuarnerDevice& device) const override;
    bool isContentBlank() const override;

    // --- Burning (AudioBurn.cpp, BurnStatus.cpp) ---

    /// A burn is refused, with error code 0, when the compilation is empty, and when the tracks'
    /// estimated blocks are not fewer than the disc's free bytes, as with a drive without a disc.
    void burnWithDevice(const QuarnerDevice& device,
                        const std::optional<std::string>& discNamed) override;

    /// `burnStatusDidChange:` Turns one status record of a burn into at most one progress report
    /// and one state report. Called by the notification centre, never by a host.
    void burnStatusDidChange(const DRNotification& notification);

protected:
    // --- The steps of adding files in which the two burners differ ---

    /// The resolved path of an item's file, by which the list is known to hold it already. None
    /// for an item that has no file.
    virtual std::optional<std::string> identifyingPath(const BurnItem& item) const;
    /// Whether a file is to be set aside as protected.
    virtual bool isProtected(const std::string& resolvedPath) const;
    /// Makes the item of a file and gives it its properties: the record, merged with what the item
    /// itself knows. Null when no item can be made. The record is what the delegate then receives.
    virtual std::shared_ptr<BurnItem> makeItem(const std::string& path, Dictionary& record) const;
    /// The report at the end of a run.
    virtual EndReport endReport(const std::vector<std::string>& protectedFiles,
                                const std::vector<std::string>& incompatibleFiles) const;

    // --- The steps of burning that they share ---

    /// The settings of every burn: closed, overwriting, verified, at the last of the drive's
    /// speeds where there are any.
    static Dictionary burnSettings(const std::optional<Array>& speeds);
    /// Starts the burn object in `_burner` and observes it, or refuses the burn. `isFitting`:
    /// whether the estimate in blocks is below the disc's free bytes.
    void writeOrRefuse(DRLayout layout, bool isFitting);
    /// Reports error code 0.
    void refuseBurn();

    /// `removeItem` for the kind of item that a burner compiles.
    void removeItemOfClass(const BurnItemRef& item, std::string_view className);

    /// The titles of the disc and its tracks, made for each burn. They are not handed to the
    /// recording service: a burnt disc carries no CD-Text.
    std::unique_ptr<DRCDTextBlock> _textBlock;
    /// Blocks that the last burn had to write, for the time left.
    std::uint64_t _estimateTotalLength = 0;
    /// What the media service can play; null until first needed.
    std::unique_ptr<std::vector<std::string>> _supportedFiles;

private:
    struct AddFilesRun;
    class KnownPaths;
    void filterPath(const std::string& path, KnownPaths& known, AddFilesRun& run);
    bool isSupported(const std::string& resolvedPath);
    void performRun(AddFilesRun& run);
    bool prepareMovie(const std::string& path) const;
    bool examineFile(const std::string& path, AddFilesRun& run);

    void fillTextBlock(const std::optional<std::string>& discName,
                       const ContentList::Snapshot& items);
    void observeBurn();
    void reportProgress(const Dictionary& status, const std::string& state);
    void reportState(const Dictionary& status, const std::string& state);
    void reportFailure(const Dictionary& status);
    void endBurn(const DRNotification& notification);

    // Where this burner is registered for its burns: a burn may outlive it.
    std::set<std::weak_ptr<DRNotificationCenter>, std::owner_less<>> _burnCenters;
};

} // namespace quarner
