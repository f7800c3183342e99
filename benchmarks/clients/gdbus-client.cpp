// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/PlainView.h"
#include "service/ServiceNames.h"

#include <gio/gio.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

using namespace ServiceNames;

namespace {

struct GVariantUnref
{
    void operator()(GVariant* value) const
    {
        g_variant_unref(value);
    }
};
using VariantPointer = std::unique_ptr<GVariant, GVariantUnref>;

[[noreturn]] void throwError(GError* error)
{
    const std::string message = error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}

PlainAttribute readAttribute(GVariant* value)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(value) != FALSE;
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32)) {
        return std::int32_t{g_variant_get_int32(value)};
    }
    return std::string(g_variant_get_string(value, nullptr));
}

PlainViews readViewsOf(GVariant* reply)
{
    PlainViews views;
    GVariant* contents = nullptr;
    g_variant_get(reply, "(v)", &contents);
    const VariantPointer array(contents);

    GVariantIter records;
    g_variant_iter_init(&records, array.get());
    views.reserve(g_variant_iter_n_children(&records));
    const char* texts[6] = {};
    guint32 pid = 0;
    guint32 sortIndex = 0;
    GVariantIter* attributes = nullptr;
    while (g_variant_iter_loop(&records, "(&s&s&s&s&s&suua{sv})", &texts[0], &texts[1], &texts[2], &texts[3], &texts[4],
                               &texts[5], &pid, &sortIndex, &attributes)) {
        PlainView view{texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], pid, sortIndex, {}};
        const char* key = nullptr;
        GVariant* value = nullptr;
        while (g_variant_iter_loop(attributes, "{&sv}", &key, &value)) {
            view.attributes.emplace(key, readAttribute(value));
        }
        views.push_back(std::move(view));
    }
    return views;
}

/// An application on GLib's GDBus.
class GDBusClient : public PlainClient
{
public:
    GDBusClient()
    {
        GError* error = nullptr;
        mConnection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
        if (mConnection == nullptr) {
            throwError(error);
        }
        mSubscription = g_dbus_connection_signal_subscribe(
            mConnection, cService, cPropertiesInterface, "PropertiesChanged", cTaskSwitcherPath, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE, onPropertiesChanged, this, nullptr);
        // The subscription is sent by GDBus's thread; the reply to a later call proves that it has arrived.
        GVariant* const answer =
            g_dbus_connection_call_sync(mConnection, cBusDaemon, cBusDaemonPath, cBusDaemon, "GetId", nullptr, nullptr,
                                        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
        if (answer == nullptr) {
            throwError(error);
        }
        g_variant_unref(answer);
    }

    ~GDBusClient() override
    {
        g_dbus_connection_signal_unsubscribe(mConnection, mSubscription);
        g_object_unref(mConnection);
    }

protected:
    bool hasOwner() override
    {
        const VariantPointer reply = call(cBusDaemon, cBusDaemonPath, cBusDaemon, "NameHasOwner",
                                          g_variant_new("(s)", cService), G_VARIANT_TYPE("(b)"));
        gboolean hasOwner = FALSE;
        g_variant_get(reply.get(), "(b)", &hasOwner);
        return hasOwner != FALSE;
    }

    PlainViews getViews() override
    {
        return readViewsOf(get(cTaskSwitcherPath, cTaskSwitcherInterface, "views").get());
    }

    std::string getCurrentView() override
    {
        return getText(cTaskSwitcherPath, cTaskSwitcherInterface, "currentView");
    }

    void setCurrentView(const std::string& uuid) override
    {
        set(cTaskSwitcherPath, cTaskSwitcherInterface, "currentView", g_variant_new_string(uuid.c_str()));
    }

    std::string getOrientation() override
    {
        return getText(cScreenPath, cScreenInterface, "orientation");
    }

    void setFullScreen(bool fullScreen) override
    {
        set(cScreenPath, cScreenInterface, "fullScreen", g_variant_new_boolean(fullScreen));
    }

    void showOverlay() override
    {
        call(cService, cOverlayPath, cOverlayInterface, "Show", g_variant_new("(s)", "Please wait"), nullptr);
    }

    void notify() override
    {
        GVariantBuilder labels;
        g_variant_builder_init(&labels, G_VARIANT_TYPE_STRING_ARRAY);
        g_variant_builder_add(&labels, "s", "view-refresh");
        g_variant_builder_add(&labels, "s", "Install");
        GVariantBuilder hints;
        g_variant_builder_init(&hints, G_VARIANT_TYPE_VARDICT);
        g_variant_builder_add(&hints, "{sv}", "action-icons", g_variant_new_boolean(TRUE));
        call(cService, cNotificationsPath, cNotificationsInterface, "Notify",
             g_variant_new("(susssasa{sv}i)", "", 0U, "dialog-information", "Update", "A new version is ready.",
                           &labels, &hints, 0),
             nullptr);
    }

    std::string captureScreenShot() override
    {
        checkSucceeded(std::filesystem::exists("/tmp"));
        const VariantPointer reply = call(cService, cScreenShotPath, cScreenShotInterface, "ScreenShot",
                                          g_variant_new("(s)", "/tmp"), G_VARIANT_TYPE("(s)"));
        const char* path = nullptr;
        g_variant_get(reply.get(), "(&s)", &path);
        return path;
    }

    void awaitNotification() override
    {
        mIsNotified = false;
        // Without a callback: no reply is asked for.
        g_dbus_connection_call(mConnection, cService, cNotifyChangePath, cNotifyChangeInterface, cNotifyChangeMethod,
                               nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
        while (!mIsNotified) {
            g_main_context_iteration(nullptr, TRUE);
        }
    }

    void fetchViews() override
    {
        mFetchedViews = get(cTaskSwitcherPath, cTaskSwitcherInterface, "views");
    }

    PlainViews decodeFetchedViews() override
    {
        return readViewsOf(mFetchedViews.get());
    }

private:
    static void onPropertiesChanged(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
                                    const char* /*interface*/, const char* /*signal*/, GVariant* parameters,
                                    gpointer client)
    {
        const VariantPointer changed(g_variant_get_child_value(parameters, 1));
        const VariantPointer currentView(g_variant_lookup_value(changed.get(), "currentView", nullptr));
        if (currentView != nullptr) {
            static_cast<GDBusClient*>(client)->mIsNotified = true;
        }
    }

    VariantPointer call(const char* service, const char* path, const char* interface, const char* method,
                        GVariant* arguments, const GVariantType* replyType)
    {
        GError* error = nullptr;
        VariantPointer reply(g_dbus_connection_call_sync(mConnection, service, path, interface, method, arguments,
                                                         replyType, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
        if (reply == nullptr) {
            throwError(error);
        }
        return reply;
    }

    VariantPointer get(const char* path, const char* interface, const char* property)
    {
        return call(cService, path, cPropertiesInterface, "Get", g_variant_new("(ss)", interface, property),
                    G_VARIANT_TYPE("(v)"));
    }

    std::string getText(const char* path, const char* interface, const char* property)
    {
        const VariantPointer reply = get(path, interface, property);
        GVariant* contents = nullptr;
        g_variant_get(reply.get(), "(v)", &contents);
        const VariantPointer value(contents);
        return g_variant_get_string(value.get(), nullptr);
    }

    void set(const char* path, const char* interface, const char* property, GVariant* value)
    {
        call(cService, path, cPropertiesInterface, "Set", g_variant_new("(ssv)", interface, property, value), nullptr);
    }

    GDBusConnection* mConnection = nullptr;
    guint mSubscription = 0;
    VariantPointer mFetchedViews;
    bool mIsNotified = false;
};

} // namespace

int main()
{
    return runClient([] {
        return std::make_unique<GDBusClient>();
    });
}
