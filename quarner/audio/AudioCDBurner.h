// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <functional>
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

/// Compiles and burns an audio CD. `Quarner` documents the operations. Get one from
/// `Quarner::audioCDBurner`.
class QUARNER_EXPORT AudioCDBurner : public Quarner {
public:
    AudioCDBurner();
    ~AudioCDBurner() override;

    // --- Adding files (AudioIngestion.cpp) ---

    bool addFiles(const std::vector<std::string>& paths) override;

    /// Always "mp3", "MP3", "m4a", "M4A", in this order, whatever the platform can play.
    std::vector<std::string> supportedFileTypes() override;

    // --- The list (AudioListEditing.cpp) ---

    /// Removes only tracks.
    void removeItem(const BurnItemRef& item) override;
    void removeItems(const BurnItemList& items) override;
    BurnItemRef child(std::uint64_t index, const BurnItemRef& ofBurnItem) const override;
    std::uint64_t numberOfChildrenOfBurnItem(const BurnItemRef& item) const override;
    std::shared_ptr<const Dictionary> propertyOfBurnItem(const BurnItemRef& item) const override;
    void moveBurnItem(const std::set<std::uint64_t>& indexes, std::int64_t to) override;
    void moveItems(const BurnItemList& items, const BurnItemRef& behind) override;

    // --- Capacity (AudioCapacity.cpp) ---

    /// The whole seconds of the tracks and their pre-gaps. Frames are summed exactly; those of the
    /// last, incomplete second are dropped.
    std::uint64_t usedCapacity() const override;
    /// Compares whole seconds. Content that fills the disc exactly fits.
    bool isContentOverflowForDevice(const QuarnerDevice& device) const override;
    bool isContentBlank() const override;

    // --- Burning (AudioBurn.cpp, BurnStatus.cpp) ---

    /// Refuses the burn, with error code 0, if the compilation is empty, or if the tracks'
    /// estimated blocks are not fewer than the disc's free bytes, as with a drive without a disc.
    void burnWithDevice(const QuarnerDevice& device,
                        const std::optional<std::string>& discNamed) override;

    /// `burnStatusDidChange:` Makes at most one progress report and one state report from one
    /// status record of a burn. Called by the notification centre, never by a host.
    void burnStatusDidChange(const DRNotification& notification);

protected:
    bool addFilesAt(const std::vector<std::string>& paths, ContentList::Place place) override;

    // --- The steps of adding files in which the two burners differ ---

    /// Returns the resolved path of an item's file, which identifies a file that is already in the
    /// list; `std::nullopt` for an item without a file.
    virtual std::optional<std::string> identifyingPath(const BurnItem& item) const;
    /// Returns whether a file is rejected as protected.
    virtual bool isProtected(const std::string& resolvedPath) const;
    /// Makes the item of a file. Its properties are the record merged with what the item itself
    /// knows; the merged record is then passed to the delegate. Returns null if no item can be
    /// made, and soon after `mayContinue` has returned false.
    virtual std::shared_ptr<BurnItem> makeItem(const std::string& path, Dictionary& record,
                                               const std::function<bool()>& mayContinue) const;
    /// Returns the report at the end of a run.
    virtual EndReport endReport(const std::vector<std::string>& protectedFiles,
                                const std::vector<std::string>& incompatibleFiles) const;

    // --- The steps of burning that they share ---

    /// Returns the settings of every burn: closed, overwriting, verified, and the drive's last
    /// speed if it has any.
    static Dictionary burnSettings(const std::optional<Array>& speeds);
    /// Starts the burn object in `_burner` and observes it, or refuses the burn. `isFitting` says
    /// whether the estimate in blocks is below the disc's free bytes.
    void writeOrRefuse(DRLayout layout, bool isFitting);
    /// Reports error code 0.
    void refuseBurn();

    /// `removeItem` for the class of items that a burner compiles.
    void removeItemOfClass(const BurnItemRef& item, std::string_view className);

    /// The titles of the disc and its tracks, made for each burn. They are not passed to the
    /// recording service: a burned disc has no CD-Text.
    std::unique_ptr<DRCDTextBlock> _textBlock;
    /// The number of blocks of the last burn, used for the time left.
    std::uint64_t _estimateTotalLength = 0;
    /// The types that the media service can play; null until first needed.
    std::unique_ptr<std::vector<std::string>> _supportedFiles;

private:
    struct AddFilesRun;
    class KnownPaths;
    bool startRun(const std::vector<std::string>& paths, ContentList::Place place);
    void filterPath(const std::string& path, KnownPaths& known, AddFilesRun& run);
    bool isSupported(const std::string& resolvedPath);
    void refuse(const std::string& path, const std::string& resolvedPath,
                RefusalReason reason) const;
    void refuseExamined(const std::string& path) const;
    void performRun(AddFilesRun& run);
    std::function<bool()> timeToComplete() const;
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
