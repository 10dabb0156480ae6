// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/DRFile.h"

namespace quarner {

/// The bit of a file-system mask for Joliet (the supplementary volume descriptor of ECMA-119 with
/// UCS-2 names).
inline constexpr std::uint32_t DRFilesystemMaskJoliet = 2;

/// The root folder of a data disc. It has the disc's name and holds file nodes.
class QUARNER_EXPORT DRFolder : public BurnItem {
public:
    /// What `className` returns.
    static constexpr std::string_view drClassName = "DRFolder";

    /// An empty folder with the name of the disc.
    explicit DRFolder(std::string name) : _name(std::move(name)) {}

    std::string_view className() const override;
    bool isKindOfClass(std::string_view name) const override;

    /// The name as given. It is not validated.
    const std::string& name() const { return _name; }

    /// The files, in the order in which they were added; none of them is null.
    const std::vector<std::shared_ptr<const DRFile>>& children() const { return _children; }
    /// Appends a file, which must not be null.
    void addChild(std::shared_ptr<const DRFile> child) { _children.push_back(std::move(child)); }

    /// The file systems in which the folder and its children are visible. A burn fails if the mask
    /// asks for a file system that the recording service does not write.
    std::uint32_t explicitFilesystemMask() const { return _explicitFilesystemMask; }
    /// Sets the mask: a sum of DRFilesystemMask... bits. It is 0 at first.
    void setExplicitFilesystemMask(std::uint32_t mask) { _explicitFilesystemMask = mask; }

private:
    std::string _name;
    std::vector<std::shared_ptr<const DRFile>> _children;
    std::uint32_t _explicitFilesystemMask = 0;
};

} // namespace quarner
