// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/isofs/IsofsTree.h"

// The libraries' headers need these two first, and then each other in this order.
#include <stdint.h>
#include <stdio.h>

#include <libburn/libburn.h>

#include <libisofs/libisofs.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "quarner/platform/DiscFormat.h"

namespace quarner {
namespace {

constexpr int blockSize = dataBlockSize; // the libraries count with this type

struct ImageRelease {
    void operator()(IsoImage* image) const { iso_image_unref(image); }
};
struct OptionsRelease {
    void operator()(IsoWriteOpts* options) const { iso_write_opts_free(options); }
};
struct SourceRelease {
    void operator()(burn::burn_source* source) const { burn::burn_source_free(source); }
};
using Image = std::unique_ptr<IsoImage, ImageRelease>;
using Options = std::unique_ptr<IsoWriteOpts, OptionsRelease>;
using Source = std::unique_ptr<burn::burn_source, SourceRelease>;

/// An error with the library's own text.
class IsofsError {
public:
    explicit IsofsError(std::string text) : _text(std::move(text)) {}
    const std::string& text() const { return _text; }

private:
    std::string _text;
};

void check(int result, const std::string& subject) {
    if (result < 0)
        throw IsofsError(subject + ": " + iso_error_to_msg(result));
}

// The library's messages are returned as the result of each call.
void initialiseOnce() {
    static const bool isInitialised = [] {
        char never[] = "NEVER";
        char prefix[] = "";
        char utf8[] = "UTF-8";
        check(iso_init(), "libisofs");
        iso_set_msgs_severities(never, never, prefix);
        return iso_set_local_charset(utf8, 0) >= 0;
    }();
    static_cast<void>(isInitialised);
}

/// The library's `struct iso_stream`, which it hides from C++ because a member is called `class`.
struct Stream {
    const IsoStreamIface* methods;
    int references;
    FileStamp* stamp;
};

const FileStamp& stampOf(IsoStream* stream) { return *reinterpret_cast<Stream*>(stream)->stamp; }

/// What the library may know of a file: its size and which one it is. Its content is zero here.
IsoStreamIface makeStreamMethods() {
    IsoStreamIface methods = {};
    constexpr int success = 1;
    std::memcpy(methods.type, "user", sizeof methods.type);
    methods.open = [](IsoStream*) { return success; };
    methods.close = [](IsoStream*) { return success; };
    methods.get_size = [](IsoStream* stream) { return static_cast<off_t>(stampOf(stream).size); };
    methods.read = [](IsoStream*, void* buffer, std::size_t count) {
        std::memset(buffer, 0, count);
        return static_cast<int>(count);
    };
    methods.is_repeatable = [](IsoStream*) { return success; };
    methods.get_id = [](IsoStream* stream, unsigned int* system, dev_t* device, ino_t* inode) {
        *system = 1; // of this machine
        *device = static_cast<dev_t>(stampOf(stream).device);
        *inode = static_cast<ino_t>(stampOf(stream).inode);
    };
    methods.free = [](IsoStream* stream) { delete reinterpret_cast<Stream*>(stream)->stamp; };
    return methods;
}

struct StreamRelease {
    void operator()(IsoStream* stream) const { iso_stream_unref(stream); }
};
using StreamPointer = std::unique_ptr<IsoStream, StreamRelease>;

StreamPointer streamOf(const FileStamp& stamp) {
    static const IsoStreamIface methods = makeStreamMethods();
    auto copy = std::make_unique<FileStamp>(stamp);
    void* const memory = std::malloc(sizeof(Stream)); // the library frees it
    if (memory == nullptr)
        throw IsofsError("out of memory");
    return StreamPointer(
        reinterpret_cast<IsoStream*>(new (memory) Stream{&methods, 1, copy.release()}));
}

void add(IsoImage* image, const JolietFolder::Entry& entry) {
    StreamPointer stream = streamOf(entry.stamp);
    IsoFile* file = nullptr;
    check(iso_image_add_new_file(image, iso_image_get_root(image), entry.name.c_str(), stream.get(),
                                 &file),
          entry.name);
    static_cast<void>(stream.release()); // the file's
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the image frees the file, and that its stream
    auto* const node = reinterpret_cast<IsoNode*>(file);
    iso_node_set_mtime(node, static_cast<time_t>(entry.stamp.modifiedSeconds));
    // The flag named after Rock Ridge hides from the primary ISO 9660 tree as a whole.
    iso_node_set_hidden(node, LIBISO_HIDE_ON_RR);
}

Image imageOf(const JolietFolder& folder) {
    IsoImage* made = nullptr;
    check(iso_image_new(folder.volumeName.c_str(), &made), "image");
    Image image(made);
    iso_tree_set_replace_mode(image.get(), ISO_REPLACE_NEVER);
    for (const JolietFolder::Entry& entry : folder.entries)
        add(image.get(), entry);
    return image;
}

Options jolietOnly() {
    constexpr int inIsoTree = 1;
    constexpr int inJoliet = 2;
    IsoWriteOpts* made = nullptr;
    check(iso_write_opts_new(&made, 0), "options");
    Options options(made);
    char utf8[] = "UTF-8";
    iso_write_opts_set_rockridge(made, 0);
    iso_write_opts_set_joliet(made, 1);
    iso_write_opts_set_joliet_utf16(made, 1);
    iso_write_opts_set_omit_version_numbers(made, inIsoTree | inJoliet);
    iso_write_opts_set_no_force_dots(made, inIsoTree | inJoliet);
    iso_write_opts_set_appendable(made, 0);
    iso_write_opts_set_output_charset(made, utf8);
    return options;
}

std::vector<std::byte> readHead(burn::burn_source& source, std::uint32_t blocks) {
    std::vector<std::byte> head(std::size_t(blocks) * blockSize);
    for (std::size_t at = 0; at < head.size(); at += blockSize) {
        auto* const block = reinterpret_cast<unsigned char*>(head.data() + at);
        if (source.read_xt(&source, block, blockSize) != blockSize)
            throw IsofsError("the file system's head cannot be read");
    }
    return head;
}

} // namespace

std::string IsofsTree::layOut(const JolietFolder& folder) {
    try {
        initialiseOnce();
        const Image image = imageOf(folder);
        const Options options = jolietOnly();
        struct ::burn_source* made = nullptr;
        check(iso_image_create_burn_source(image.get(), options.get(), &made), "layout");
        const Source source(reinterpret_cast<burn::burn_source*>(made));
        std::uint32_t dataStart = 0;
        check(iso_write_opts_get_data_start(options.get(), &dataStart, 0), "layout");
        blocks = static_cast<std::uint64_t>(source->get_size(source.get())) / blockSize;
        head = readHead(*source, dataStart);
        // The library's writer thread waits to deliver the content of the streams; nobody reads it.
        source->cancel(source.get());
        return {};
    } catch (const IsofsError& error) {
        return error.text();
    }
}

} // namespace quarner
