// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "applications/ByHand.h"
#include "clients/SdBus.h"
#include "service/ServiceNames.h"

#include <QSocketNotifier>

#include <cstdint>

using namespace ServiceNames;

namespace {

QString toText(const char* text)
{
    return QString::fromUtf8(text);
}

/// sd-bus in Qt's event loop. Keeps the values that the signals carry, or reads every value with a call.
class SdBusBinding
{
public:
    explicit SdBusBinding(bool keepsNotifiedValues)
        : mBus(openBus())
        , mSlot(followProperties(mBus.get(), cService, cTaskSwitcherPath, onPropertiesChanged, this))
        , mReadable(sd_bus_get_fd(mBus.get()), QSocketNotifier::Read)
    {
        QObject::connect(&mReadable, &QSocketNotifier::activated, [this] {
            process();
        });
        if (keepsNotifiedValues) {
            mViews = getViews();
            mCurrentView = getCurrentView();
            mKeepsNotifiedValues = true;
        }
    }

    bool hasOwner()
    {
        return mKeepsNotifiedValues || ::hasOwner(mBus.get(), cService);
    }

    ViewRecordList getViews()
    {
        return mKeepsNotifiedValues ? mViews : readViews<ViewRecord, ViewRecordList>(get("views").get(), toText);
    }

    QString getCurrentView()
    {
        return mKeepsNotifiedValues ? mCurrentView : readVariant(get("currentView").get());
    }

    void setCurrentView(const QString& uuid)
    {
        callMethod(mBus.get(), cService, cTaskSwitcherPath, cPropertiesInterface, "Set", "ssv", cTaskSwitcherInterface,
                   "currentView", "s", uuid.toUtf8().constData());
        processLater();
    }

    std::function<void(bool areViewsChanged, bool isCurrentViewChanged)> onChanged;

private:
    static int onPropertiesChanged(sd_bus_message* message, void* binding, sd_bus_error* /*error*/)
    {
        static_cast<SdBusBinding*>(binding)->readChange(message);
        return 0;
    }

    void readChange(sd_bus_message* message)
    {
        bool areViewsChanged = false;
        bool isCurrentViewChanged = false;
        readText(message);
        check(sd_bus_message_enter_container(message, 'a', "{sv}"));
        while (check(sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
            const QLatin1String property(readText(message));
            const bool isViews = property == QLatin1String("views");
            const bool isCurrentView = property == QLatin1String("currentView");
            areViewsChanged = areViewsChanged || isViews;
            isCurrentViewChanged = isCurrentViewChanged || isCurrentView;
            if (mKeepsNotifiedValues && isViews) {
                mViews = readViews<ViewRecord, ViewRecordList>(message, toText);
            } else if (mKeepsNotifiedValues && isCurrentView) {
                mCurrentView = readVariant(message);
            } else {
                check(sd_bus_message_skip(message, "v"));
            }
            check(sd_bus_message_exit_container(message));
        }
        onChanged(areViewsChanged, isCurrentViewChanged);
    }

    static QString readVariant(sd_bus_message* message)
    {
        const char* text = nullptr;
        check(sd_bus_message_read(message, "v", "s", &text));
        return toText(text);
    }

    SdBusMessagePointer get(const char* property)
    {
        return callMethod(mBus.get(), cService, cTaskSwitcherPath, cPropertiesInterface, "Get", "ss",
                          cTaskSwitcherInterface, property);
    }

    void process()
    {
        while (check(sd_bus_process(mBus.get(), nullptr)) > 0) { }
    }

    // A signal that came while a call waited for its reply is queued in sd-bus, where no descriptor is readable.
    void processLater()
    {
        QMetaObject::invokeMethod(
            &mReadable,
            [this] {
                process();
            },
            Qt::QueuedConnection);
    }

    SdBusPointer mBus;
    SdBusSlotPointer mSlot;
    QSocketNotifier mReadable;
    bool mKeepsNotifiedValues = false;
    ViewRecordList mViews;
    QString mCurrentView;
};

} // namespace

// A list of views on sd-bus, written by hand. Keeps the values that the signals carry if the second argument is
// "notified".
int main(int argc, char** argv)
{
    Application application(argc, argv);
    SdBusBinding binding(application.arguments().value(2) == QLatin1String("notified"));
    return showByHand(application, binding);
}
