// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/worker/Message.h"

#include <glib.h>

#include <algorithm>
#include <memory>

namespace quarner {
namespace {

struct VariantRelease {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, VariantRelease>;

constexpr char messageType[] = "(sa{sv})";

GVariant* variantOf(const Value& value);

GVariant* variantOf(const std::string& text) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, text.data(), text.size(), 1);
}

GVariant* variantOf(const Array& list) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("av"));
    for (const Value& element : list)
        g_variant_builder_add(&builder, "v", variantOf(element));
    return g_variant_builder_end(&builder);
}

GVariant* variantOf(const Dictionary& dictionary) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    for (const auto& [key, value] : dictionary)
        g_variant_builder_add(&builder, "{sv}", key.c_str(), variantOf(value));
    return g_variant_builder_end(&builder);
}

/// The kinds of numbers are told apart by how they compare with their own conversions.
GVariant* variantOfNumber(const Value& value) {
    if (value == Value(value.asBool()))
        return g_variant_new_boolean(value.asBool() ? TRUE : FALSE);
    if (value == Value(value.asInt64()))
        return g_variant_new_int64(value.asInt64());
    return g_variant_new_double(value.asDouble());
}

GVariant* variantOf(const Value& value) {
    if (value.isNumber())
        return variantOfNumber(value);
    if (const std::string* text = value.asString())
        return variantOf(*text);
    if (const Array* list = value.asArray())
        return variantOf(*list);
    if (const Dictionary* dictionary = value.asDictionary())
        return variantOf(*dictionary);
    return g_variant_new_tuple(nullptr, 0);
}

Value valueOf(GVariant* variant);

std::string textOf(GVariant* variant) {
    gsize size = 0;
    const auto* const bytes =
        static_cast<const char*>(g_variant_get_fixed_array(variant, &size, sizeof(char)));
    return size == 0 ? std::string() : std::string(bytes, size);
}

Array listOf(GVariant* variant) {
    Array list;
    for (gsize i = 0; i < g_variant_n_children(variant); ++i) {
        const Variant boxed(g_variant_get_child_value(variant, i));
        const Variant child(g_variant_get_variant(boxed.get()));
        list.push_back(valueOf(child.get()));
    }
    return list;
}

Dictionary dictionaryOf(GVariant* variant) {
    Dictionary dictionary;
    for (gsize i = 0; i < g_variant_n_children(variant); ++i) {
        const Variant entry(g_variant_get_child_value(variant, i));
        const Variant key(g_variant_get_child_value(entry.get(), 0));
        const Variant boxed(g_variant_get_child_value(entry.get(), 1));
        const Variant value(g_variant_get_variant(boxed.get()));
        dictionary[g_variant_get_string(key.get(), nullptr)] = valueOf(value.get());
    }
    return dictionary;
}

Value valueOf(GVariant* variant) {
    const auto is = [variant](const char* type) {
        return g_variant_is_of_type(variant, G_VARIANT_TYPE(type)) != FALSE;
    };
    if (is("b"))
        return g_variant_get_boolean(variant) != FALSE;
    if (is("x"))
        return std::int64_t(g_variant_get_int64(variant));
    if (is("d"))
        return g_variant_get_double(variant);
    if (is("ay"))
        return textOf(variant);
    if (is("av"))
        return listOf(variant);
    if (is("a{sv}"))
        return dictionaryOf(variant);
    return {};
}

} // namespace

std::vector<std::byte> encoded(const Message& message) {
    const Variant variant(g_variant_ref_sink(
        g_variant_new("(s@a{sv})", message.name.c_str(), variantOf(message.fields))));
    std::vector<std::byte> bytes(g_variant_get_size(variant.get()));
    g_variant_store(variant.get(), bytes.data());
    return bytes;
}

std::optional<Message> decoded(std::span<const std::byte> bytes) {
    const std::unique_ptr<GBytes, decltype(&g_bytes_unref)> copy(
        g_bytes_new(bytes.data(), bytes.size()), g_bytes_unref);
    const Variant variant(g_variant_ref_sink(
        g_variant_new_from_bytes(G_VARIANT_TYPE(messageType), copy.get(), FALSE)));
    if (g_variant_is_normal_form(variant.get()) == FALSE)
        return std::nullopt;
    const Variant name(g_variant_get_child_value(variant.get(), 0));
    const Variant fields(g_variant_get_child_value(variant.get(), 1));
    Message message{g_variant_get_string(name.get(), nullptr), dictionaryOf(fields.get())};
    if (!std::ranges::equal(encoded(message), bytes)) // another type, or a key twice
        return std::nullopt;
    return message;
}

} // namespace quarner
