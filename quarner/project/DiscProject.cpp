// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DiscProject.h"

#include <algorithm>
#include <utility>

#include "quarner/project/ProjectCore.h"
#include "quarner/util/Paths.h"

// Every operation keeps the core, because an observer may destroy the project during the call.
namespace quarner {

DiscProject::DiscProject(Kind kind) : _core(std::make_shared<ProjectCore>(kind)) { _core->start(); }

DiscProject::~DiscProject() { _core->close(); }

DiscProject::Kind DiscProject::kind() const { return _core->kind(); }

std::vector<std::string> DiscProject::fileExtensions() {
    std::vector<std::string> extensions;
    for (const std::string& type : Quarner::audioCDBurner()->supportedFileTypes()) {
        const std::string extension = Paths::lowercaseExtension("." + type);
        if (std::find(extensions.begin(), extensions.end(), extension) == extensions.end())
            extensions.push_back(extension);
    }
    return extensions;
}

void DiscProject::addObserver(std::weak_ptr<DiscProjectObserver> observer) {
    _core->observers().add(std::move(observer));
}

void DiscProject::setDelegate(std::weak_ptr<QuarnDelegate> delegate) {
    _core->setDelegate(std::move(delegate));
}

void DiscProject::add(const std::vector<std::string>& paths) {
    const auto core = _core;
    core->add(paths, std::nullopt);
}

void DiscProject::add(const std::vector<std::string>& paths, std::size_t row) {
    const auto core = _core;
    core->add(paths, row);
}

void DiscProject::addSorted(const std::vector<std::string>& paths) {
    const auto core = _core;
    core->addSorted(paths);
}

bool DiscProject::isAdding() const { return _core->isAdding(); }

void DiscProject::cancelAdding() { _core->cancelAdding(); }

void DiscProject::remove(const std::set<std::size_t>& rows) {
    const auto core = _core;
    core->remove(rows);
}

void DiscProject::move(const std::set<std::size_t>& rows, std::size_t to) {
    const auto core = _core;
    core->move(rows, to);
}

void DiscProject::clear() {
    const auto core = _core;
    core->clear();
}

std::shared_ptr<const DiscItems> DiscProject::items() const { return _core->items(); }

std::vector<DiscDrive> DiscProject::drives() const { return _core->drives().drives(); }

std::optional<DiscDrive> DiscProject::drive(DiscDrive::Id id) const {
    return _core->drives().drive(id);
}

std::optional<DiscDrive::Id> DiscProject::driveNamed(const std::string& name) const {
    std::optional<DiscDrive::Id> id;
    for (const DiscDrive& drive : drives())
        if (drive.name == name)
            id = drive.id;
    return id;
}

void DiscProject::examine(DiscDrive::Id id, std::function<void()> done) {
    _core->examine(id, std::move(done));
}

void DiscProject::eject(DiscDrive::Id id, std::function<void(const std::string&)> done) {
    _core->eject(id, std::move(done));
}

DiscCapacity DiscProject::capacity(std::optional<DiscDrive::Id> drive) const {
    return _core->capacity(drive);
}

std::vector<DiscProblem> DiscProject::problems(DiscDrive::Id drive) const {
    return _core->problems(drive);
}

bool DiscProject::burn(DiscDrive::Id drive, const std::string& title) {
    const auto core = _core;
    return core->burn(drive, title);
}

void DiscProject::cancelBurn() { _core->cancelBurn(); }

bool DiscProject::isBurning() const { return _core->isBurning(); }

} // namespace quarner
