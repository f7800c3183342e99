// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "applications/ByHand.h"
#include "clients/ObjectProperties.h"

#include <QDBusMetaType>

namespace {

class QtDBusBinding : public ObjectProperties
{
public:
    QtDBusBinding()
        : ObjectProperties(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"))
    {
        qDBusRegisterMetaType<ViewRecord>();
        connect(this, &PropertyWatcher::changed, this, [this](const QVariantMap& values) {
            onChanged(values.contains(QStringLiteral("views")), values.contains(QStringLiteral("currentView")));
        });
    }

    ViewRecordList getViews()
    {
        return qdbus_cast<ViewRecordList>(get(QStringLiteral("views")));
    }

    QString getCurrentView()
    {
        return get(QStringLiteral("currentView")).toString();
    }

    void setCurrentView(const QString& uuid)
    {
        set(QStringLiteral("currentView"), uuid);
    }

    std::function<void(bool areViewsChanged, bool isCurrentViewChanged)> onChanged;
};

} // namespace

// A list of views on QtDBus, written by hand.
int main(int argc, char** argv)
{
    Application application(argc, argv);
    QtDBusBinding binding;
    return showByHand(application, binding);
}
