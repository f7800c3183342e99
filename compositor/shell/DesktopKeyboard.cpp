// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/DesktopKeyboard.h"

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QStringList>

#include <cstdlib>
#include <memory>
#include <qpa/qplatformnativeinterface.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

namespace {

template <typename Resource> Resource* nativeResource(const char* name)
{
    return static_cast<Resource*>(QGuiApplication::platformNativeInterface()->nativeResourceForIntegration(name));
}

std::optional<Keymap::Layout> checked(const QString& name, const QString& variant)
{
    const Result<Keymap::Layout> layout =
        Keymap::readLayout(variant.isEmpty() ? name : QStringLiteral("%1(%2)").arg(name, variant));
    const auto* const found = std::get_if<Keymap::Layout>(&layout);
    return found == nullptr ? std::nullopt : std::optional<Keymap::Layout>(*found);
}

/// Returns the property of the root window in which X servers and setxkbmap keep the names of the layouts: rules,
/// model, layouts, variants and options, each with a terminating null.
QByteArray rulesOf(xcb_connection_t* connection)
{
    constexpr char cProperty[] = "_XKB_RULES_NAMES";
    constexpr uint32_t cMostWords = 256;
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, sizeof(cProperty) - 1, cProperty), nullptr),
        std::free);
    if (atom == nullptr) {
        return {};
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> property(
        xcb_get_property_reply(
            connection, xcb_get_property(connection, 0, root, atom->atom, XCB_ATOM_STRING, 0, cMostWords), nullptr),
        std::free);
    return property == nullptr ? QByteArray()
                               : QByteArray(static_cast<const char*>(xcb_get_property_value(property.get())),
                                            xcb_get_property_value_length(property.get()));
}

std::optional<Keymap::Layout> layoutOfX(xcb_connection_t* connection)
{
    const QList<QByteArray> rules = rulesOf(connection).split('\0');
    return checked(QString::fromLatin1(rules.value(2).split(',').value(0)),
                   QString::fromLatin1(rules.value(3).split(',').value(0)));
}

/// Reads the keymap of a Wayland compositor, beside Qt's own wl_keyboard, which keeps it to itself.
class WaylandKeymap
{
public:
    explicit WaylandKeymap(wl_display* display)
        : mQueue(wl_display_create_queue(display))
    {
        auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), mQueue);
        mRegistry = wl_display_get_registry(wrapper);
        wl_proxy_wrapper_destroy(wrapper);
        static const wl_registry_listener listener = {handleGlobal, [](void*, wl_registry*, uint32_t) {}};
        wl_registry_add_listener(mRegistry, &listener, this);
        // The globals, the seat's capabilities, and the keyboard's keymap.
        for (int i = 0; i < 3; ++i) {
            wl_display_roundtrip_queue(display, mQueue);
        }
    }
    ~WaylandKeymap()
    {
        if (mKeyboard != nullptr) {
            // Some compositors send keys to the last keyboard of a client, so this one must not stay.
            wl_keyboard_release(mKeyboard);
        }
        if (mSeat != nullptr) {
            wl_seat_destroy(mSeat);
        }
        wl_registry_destroy(mRegistry);
        wl_event_queue_destroy(mQueue);
    }
    WaylandKeymap(const WaylandKeymap&) = delete;
    WaylandKeymap& operator=(const WaylandKeymap&) = delete;

    QByteArray text() const
    {
        return mText;
    }

private:
    static WaylandKeymap* of(void* data)
    {
        return static_cast<WaylandKeymap*>(data);
    }

    static void handleGlobal(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version)
    {
        if (of(data)->mSeat == nullptr && qstrcmp(interface, wl_seat_interface.name) == 0
            && version >= WL_KEYBOARD_RELEASE_SINCE_VERSION) {
            of(data)->mSeat = static_cast<wl_seat*>(
                wl_registry_bind(registry, name, &wl_seat_interface, WL_KEYBOARD_RELEASE_SINCE_VERSION));
            static const wl_seat_listener listener = {handleCapabilities, [](void*, wl_seat*, const char*) {}};
            wl_seat_add_listener(of(data)->mSeat, &listener, data);
        }
    }

    static void handleCapabilities(void* data, wl_seat* seat, uint32_t capabilities)
    {
        if (of(data)->mKeyboard == nullptr && (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0) {
            of(data)->mKeyboard = wl_seat_get_keyboard(seat);
            static const wl_keyboard_listener listener = {
                handleKeymap,
                [](void*, wl_keyboard*, uint32_t, wl_surface*, wl_array*) {},
                [](void*, wl_keyboard*, uint32_t, wl_surface*) {},
                [](void*, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t) {},
                [](void*, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t) {},
                [](void*, wl_keyboard*, int32_t, int32_t) {},
            };
            wl_keyboard_add_listener(of(data)->mKeyboard, &listener, data);
        }
    }

    static void handleKeymap(void* data, wl_keyboard*, uint32_t format, int32_t descriptor, uint32_t size)
    {
        void* const memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
        close(descriptor);
        if (memory == MAP_FAILED) {
            return;
        }
        if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1) {
            of(data)->mText = QByteArray(static_cast<const char*>(memory), static_cast<int>(size));
        }
        munmap(memory, size);
    }

    wl_event_queue* mQueue;
    wl_registry* mRegistry = nullptr;
    wl_seat* mSeat = nullptr;
    wl_keyboard* mKeyboard = nullptr;
    QByteArray mText;
};

/// Returns the layout that has this description in XKB's list: "German (no dead keys)" is de(nodeadkeys).
std::optional<Keymap::Layout> layoutOfDescription(const QString& description)
{
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                                                             xkb_context_unref);
    const QRegularExpression layout(QStringLiteral("^ +(\\w+) +%1$").arg(QRegularExpression::escape(description)));
    const QRegularExpression variant(
        QStringLiteral("^ +([\\w-]+) +(\\w+): %1$").arg(QRegularExpression::escape(description)));
    for (unsigned int i = 0; i < xkb_context_num_include_paths(context.get()); ++i) {
        QFile list(QFile::decodeName(xkb_context_include_path_get(context.get(), i))
                   + QStringLiteral("/rules/evdev.lst"));
        if (!list.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QStringList lines = QString::fromUtf8(list.readAll()).split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            QRegularExpressionMatch match = layout.match(line);
            if (match.hasMatch()) {
                return checked(match.captured(1), QString());
            }
            match = variant.match(line);
            if (match.hasMatch()) {
                return checked(match.captured(2), match.captured(1));
            }
        }
    }
    return {};
}

std::optional<Keymap::Layout> layoutOfWayland(wl_display* display)
{
    const QString keymap = QString::fromUtf8(WaylandKeymap(display).text());
    static const QRegularExpression pattern(QStringLiteral("\\bname\\[(?:Group)?1\\]\\s*=\\s*\"([^\"]+)\""));
    const QRegularExpressionMatch match = pattern.match(keymap);
    return match.hasMatch() ? layoutOfDescription(match.captured(1)) : std::nullopt;
}

} // namespace

std::optional<Keymap::Layout> DesktopKeyboard::layout()
{
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("xcb")) {
        return layoutOfX(nativeResource<xcb_connection_t>("connection"));
    }
    return platform.startsWith(QLatin1String("wayland")) ? layoutOfWayland(nativeResource<wl_display>("wl_display"))
                                                         : std::nullopt;
}
