// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietImage.h"

#include <glib.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/joliet/JolietDirectory.h"
#include "adapters/joliet/JolietLayout.h"
#include "adapters/joliet/JolietNames.h"
#include "adapters/posix/FileStamps.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

using Records = std::map<std::u16string, JolietRecord>;
using Extents = std::vector<JolietImage::Extent>;

std::string baseName(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

std::u16string utf16(const std::string& text) {
    glong length = 0;
    const std::unique_ptr<gunichar2, decltype(&g_free)> units(
        g_utf8_to_utf16(text.c_str(), -1, nullptr, &length, nullptr), g_free);
    return units ? std::u16string(units.get(), units.get() + length) : std::u16string();
}

std::vector<JolietFolder::Entry> entriesOf(const DRFolder& folder) {
    std::vector<std::string> fileNames;
    for (const auto& node : folder.children())
        fileNames.push_back(baseName(node->sourcePath()));
    const std::vector<std::string> names = jolietNames(fileNames);
    std::vector<JolietFolder::Entry> entries;
    for (std::size_t i = 0; i < names.size(); ++i)
        entries.push_back({names[i], folder.children()[i]->stamp()});
    return entries;
}

/// A file that is in the folder twice has its content on the disc once.
void sortAndUnify(Extents& extents) {
    std::stable_sort(extents.begin(), extents.end(),
                     [](const auto& a, const auto& b) { return a.firstBlock < b.firstBlock; });
    const auto end = std::unique(extents.begin(), extents.end(), [](const auto& a, const auto& b) {
        return a.firstBlock == b.firstBlock;
    });
    extents.erase(end, extents.end());
}

/// Returns the extents of the files as the directory records them.
Extents extentsOf(const DRFolder& folder, const std::vector<JolietFolder::Entry>& entries,
                  const Records& records) {
    Extents extents;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const DRFile& node = *folder.children()[i];
        const auto record = records.find(utf16(entries[i].name));
        if (record == records.end() || record->second.size != node.stamp().size)
            throw BurnFailure(DRError::Internal,
                              node.sourcePath() + ": not listed on the disc as it should be",
                              node.sourcePath());
        if (node.stamp().size > 0)
            extents.push_back({node.sourcePath(), node.stamp(), record->second.firstBlock});
    }
    sortAndUnify(extents);
    return extents;
}

bool areInOrder(const Extents& extents, std::uint64_t headBlocks, std::uint64_t blocks) {
    std::uint64_t next = headBlocks;
    for (const JolietImage::Extent& extent : extents) {
        if (extent.firstBlock < next)
            return false;
        next = extent.firstBlock + extent.blocks();
    }
    return next <= blocks;
}

} // namespace

void checkFiles(const DRFolder& folder) {
    for (const auto& node : folder.children()) {
        const std::string& path = node->sourcePath();
        const std::optional<FileStamp> now = stampOfFile(path);
        if (!now || !mayBeRead(path))
            throw BurnFailure(DRError::SourceMissing,
                              text("{path}: gone or not readable", {{"path", path}}), path);
        if (*now != node->stamp())
            throw BurnFailure(DRError::SourceChanged,
                              text("{path}: changed since it was added", {{"path", path}}), path);
    }
}

std::unique_ptr<const JolietImage> JolietImage::ofFolder(const DRFolder& folder,
                                                         const StopSignal* stop) {
    if (folder.explicitFilesystemMask() != DRFilesystemMaskJoliet)
        throw BurnFailure(DRError::WrongMedia, "only discs of a Joliet file system are written");
    checkFiles(folder);
    const JolietFolder laidOut{volumeName(folder.name()), entriesOf(folder)};
    JolietTree tree = layOut(laidOut, stop);
    auto image = std::make_unique<JolietImage>();
    image->_blocks = tree.blocks;
    image->_head = std::move(tree.head);
    image->_extents = extentsOf(folder, laidOut.entries, jolietRootDirectory(image->_head));
    if (!areInOrder(image->_extents, image->_head.size() / dataBlockSize, image->_blocks))
        throw BurnFailure(DRError::Internal, "the files of the data disc overlap");
    return image;
}

} // namespace quarner
