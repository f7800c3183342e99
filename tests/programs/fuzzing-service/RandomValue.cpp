// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "RandomValue.h"

#include <limits>
#include <vector>

namespace {

const int cDeepest = 8;
/// The bus limits the signature of all arguments together to 255 characters.
const std::size_t cLongestType = 60;

} // namespace

RandomValue::RandomValue(std::uint64_t seed)
    : mGenerator(seed)
{
}

int RandomValue::below(int bound)
{
    return static_cast<int>(mGenerator() % static_cast<std::uint64_t>(bound));
}

bool RandomValue::oneIn(int count)
{
    return below(count) == 0;
}

GVariantPointer RandomValue::any()
{
    const std::string chosen = type(0);
    return ofType(chosen.size() <= cLongestType ? chosen : "s", 0);
}

GVariantPointer RandomValue::views()
{
    std::vector<std::string> members{"s", "s", "s", "s", "s", "s", "u", "u", "a{sv}"};
    if (!oneIn(3)) {
        const auto place = members.begin() + below(static_cast<int>(members.size()));
        switch (below(4)) {
        case 0:
            *place = type(2);
            break;
        case 1:
            *place = basicType();
            break;
        case 2:
            members.insert(oneIn(2) ? members.end() : place, type(2));
            break;
        default:
            members.erase(place);
            break;
        }
    }
    std::string array = "a(";
    for (const std::string& member : members) {
        array += member;
    }
    array += ')';
    return ofType(array.size() <= cLongestType ? array : "a(ssssssuua{sv})", 0);
}

GVariantPointer RandomValue::properties(const QStringList& keys)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    for (int count = below(5); count > 0; --count) {
        const std::string key = oneIn(5) ? text() : keys.at(below(keys.size())).toStdString();
        const GVariantPointer value = any();
        g_variant_builder_add(&builder, "{sv}", key.c_str(), value.get());
    }
    return GVariantPointer(g_variant_ref_sink(g_variant_builder_end(&builder)));
}

GVariantPointer RandomValue::variant(const GVariantPointer& content)
{
    return GVariantPointer(g_variant_ref_sink(g_variant_new_variant(content.get())));
}

std::string RandomValue::text()
{
    static const std::vector<std::string> cPieces{"one",
                                                  "two",
                                                  "a",
                                                  " ",
                                                  "\n",
                                                  "\"",
                                                  "'",
                                                  "\\",
                                                  "%1",
                                                  "%s",
                                                  "<",
                                                  "&",
                                                  "true",
                                                  "0",
                                                  "1",
                                                  "90",
                                                  "-1",
                                                  "\xc3\xa4",
                                                  "\xe2\x80\xae",
                                                  "\xef\xbf\xbe",
                                                  "\xef\xbb\xbf",
                                                  "\xf4\x8f\xbf\xbf",
                                                  "\xf0\x9f\x98\x80",
                                                  "\x01",
                                                  "\x7f"};
    std::string made;
    for (int count = oneIn(50) ? 500 : below(4); count > 0; --count) {
        made += cPieces.at(static_cast<std::size_t>(below(static_cast<int>(cPieces.size()))));
    }
    return made;
}

std::string RandomValue::basicType()
{
    static const std::string cBasicTypes = "ybnqiuxtdsogh";
    return {cBasicTypes.at(static_cast<std::size_t>(below(static_cast<int>(cBasicTypes.size()))))};
}

std::string RandomValue::type(int depth)
{
    if (depth >= cDeepest || oneIn(2)) {
        return basicType();
    }
    switch (below(5)) {
    case 0:
        return "v";
    case 1:
        return "a{" + basicType() + type(depth + 1) + '}';
    case 2: {
        std::string structure = "(";
        for (int count = 1 + below(4); count > 0; --count) {
            structure += type(depth + 1);
        }
        return structure + ')';
    }
    default:
        return 'a' + type(depth + 1);
    }
}

GVariantPointer RandomValue::ofType(const std::string& type, int depth)
{
    const auto bits = [this] {
        // Mostly edge values.
        switch (below(4)) {
        case 0:
            return std::uint64_t{0};
        case 1:
            return std::numeric_limits<std::uint64_t>::max();
        default:
            return static_cast<std::uint64_t>(mGenerator());
        }
    };
    GVariant* value = nullptr;
    switch (type.front()) {
    case 'y':
        value = g_variant_new_byte(static_cast<guchar>(bits()));
        break;
    case 'b':
        value = g_variant_new_boolean(oneIn(2) ? TRUE : FALSE);
        break;
    case 'n':
        value = g_variant_new_int16(static_cast<gint16>(bits()));
        break;
    case 'q':
        value = g_variant_new_uint16(static_cast<guint16>(bits()));
        break;
    case 'i':
        value = g_variant_new_int32(static_cast<gint32>(bits()));
        break;
    case 'u':
        value = g_variant_new_uint32(static_cast<guint32>(bits()));
        break;
    case 'x':
        value = g_variant_new_int64(static_cast<gint64>(bits()));
        break;
    case 't':
        value = g_variant_new_uint64(bits());
        break;
    case 'd':
        value = g_variant_new_double(static_cast<double>(bits()) / 3.0);
        break;
    case 'h':
        value = g_variant_new_handle(0);
        break;
    case 's':
        value = g_variant_new_string(text().c_str());
        break;
    case 'o':
        value = g_variant_new_object_path(objectPath().c_str());
        break;
    case 'g': {
        const std::string signature = this->type(cDeepest - 2);
        value = g_variant_new_signature(signature.c_str());
        break;
    }
    case 'v': {
        const std::string content = this->type(depth + 1);
        return variant(ofType(content.size() <= cLongestType ? content : "s", depth + 1));
    }
    default:
        return ofContainerType(G_VARIANT_TYPE(type.c_str()), depth);
    }
    return GVariantPointer(g_variant_ref_sink(value));
}

GVariantPointer RandomValue::ofContainerType(const GVariantType* type, int depth)
{
    const auto add = [this, depth](GVariantBuilder* builder, const GVariantType* member) {
        gchar* const text = g_variant_type_dup_string(member);
        const GVariantPointer value = ofType(text, depth + 1);
        g_free(text);
        g_variant_builder_add_value(builder, value.get());
    };
    GVariantBuilder builder;
    g_variant_builder_init(&builder, type);
    if (g_variant_type_is_array(type) != FALSE) {
        for (int count = depth > 4 ? below(2) : below(4); count > 0; --count) {
            add(&builder, g_variant_type_element(type));
        }
    } else {
        for (const GVariantType* member = g_variant_type_first(type); member != nullptr;
             member = g_variant_type_next(member)) {
            add(&builder, member);
        }
    }
    return GVariantPointer(g_variant_ref_sink(g_variant_builder_end(&builder)));
}

std::string RandomValue::objectPath()
{
    std::string path;
    for (int count = below(4); count > 0; --count) {
        path += "/a" + std::to_string(below(100));
    }
    return path.empty() ? "/" : path;
}
