// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveTaskSwitcher.h"

#include "PlainValue.h"
#include "ServiceCall.h"
#include "TelvaroTaskSwitcher.h"
#include "VariantConversionTools.h"
#include "ViewsArgument.h"

#include <TelvaroDBusDefinitions.h>

#include <QDBusArgument>
#include <QPointer>
#include <QVariantMap>

#include <algorithm>
#include <iterator>

namespace {

using Connector = TelvaroTaskSwitcherDBusConnector;
using View = TelvaroViewModel::View;

bool readViews(const QVariant& value, QList<View>& views)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>()) {
        return false;
    }
    const auto argument = value.value<QDBusArgument>();
    if (!ViewsArgument::isReadable(argument)) {
        return false;
    }
    argument >> views;
    return true;
}

// In place, since nearly all attributes are plain already.
void makePlain(QVariantMap& attributes)
{
    for (auto attribute = attributes.begin(); attribute != attributes.end();) {
        // All D-Bus types are types of users to Qt.
        if (attribute->userType() >= QMetaType::User) {
            *attribute = toPlainValue(*attribute);
        }
        const QString& key = attribute.key();
        // Of values with the same key, the one sent last comes first.
        for (++attribute; attribute != attributes.end() && attribute.key() == key;) {
            attribute = attributes.erase(attribute);
        }
    }
}

} // namespace

LiveTaskSwitcher::LiveTaskSwitcher()
    : LiveProperties(TelvaroDBusDefinitions::getTaskSwitcherPath(), TelvaroDBusDefinitions::getTaskSwitcherInterface(),
                     {Connector::cViewsProperty, Connector::cCurrentViewProperty})
{
}

TelvaroViewModel* LiveTaskSwitcher::getModel()
{
    return mRows.getModel();
}

QString LiveTaskSwitcher::getCurrentView() const
{
    return mCurrentView;
}

QDBusPendingCall LiveTaskSwitcher::switchTo(const QString& uuid)
{
    if (uuid.isEmpty()) {
        return ServiceCall::refuse(QDBusError::InvalidArgs, QStringLiteral("The uuid of the view is empty"));
    }
    const QDBusPendingCall request = write(Connector::cCurrentViewProperty, uuid);
    mRequestedView = uuid;
    mIsRequestedViewNamed = false;
    mIsRequestAnswered = false;
    ServiceCall::whenAnswered(request, this, [this, number = ++mRequest](const QDBusPendingCall& answered) {
        if (number == mRequest) {
            onRequestAnswered(answered.isError());
        }
    });
    return request;
}

QDBusPendingCall LiveTaskSwitcher::switchToView(const QString& appId, uint32_t sortIndex)
{
    const auto view = std::find_if(mViews.cbegin(), mViews.cend(), [&appId, sortIndex](const View& candidate) {
        return candidate.appId == appId && candidate.sortIndex == sortIndex;
    });
    if (view == mViews.cend()) {
        return ServiceCall::refuse(QDBusError::InvalidArgs,
                                   QStringLiteral("The application has no view with this sort index"));
    }
    return switchTo(view->uuid);
}

QDBusPendingCall LiveTaskSwitcher::step(bool backward)
{
    const auto find = [this](const QString& uuid) {
        // An empty uuid is that of no view, even if a view has it.
        return std::find_if(mViews.cbegin(), mViews.cend(), [&uuid](const View& view) {
            return !uuid.isEmpty() && view.uuid == uuid;
        });
    };
    auto from = find(mRequestedView);
    if (from == mViews.cend()) {
        from = find(mCurrentView);
    }
    if (from == mViews.cend()) {
        return ServiceCall::refuse(QDBusError::InvalidArgs, QStringLiteral("The current view is not among the views"));
    }

    QList<View> views;
    std::copy_if(mViews.cbegin(), mViews.cend(), std::back_inserter(views), [from](const View& view) {
        return view.appId == from->appId;
    });
    std::sort(views.begin(), views.end(), [](const View& left, const View& right) {
        return left.sortIndex < right.sortIndex;
    });
    const auto position = std::find_if(views.cbegin(), views.cend(), [from](const View& view) {
        return view.uuid == from->uuid;
    });
    const auto step = backward ? views.size() - 1 : 1;
    const View& target = views.at((static_cast<int>(position - views.cbegin()) + step) % views.size());
    return target.uuid == from->uuid ? ServiceCall::succeed() : switchTo(target.uuid);
}

bool LiveTaskSwitcher::store(const QString& name, const QVariant& value, Origin origin)
{
    const bool isNotified = origin == Origin::Notification;
    if (name == Connector::cViewsProperty) {
        QList<View> views;
        if (!readViews(value, views) || (isNotified && views.isEmpty())) {
            return false;
        }
        for (View& view : views) {
            makePlain(view.attributes);
        }
        mViews = views;
        return true;
    }
    QString uuid;
    if (!VariantConversionTools::toString(value, uuid) || (isNotified && uuid.isEmpty())) {
        return false;
    }
    mCurrentView = uuid;
    if (mIsRequestAnswered) {
        mRequestedView.clear();
    } else if (uuid == mRequestedView) {
        mIsRequestedViewNamed = true;
    }
    return true;
}

void LiveTaskSwitcher::forget()
{
    mViews.clear();
    mCurrentView.clear();
    mRequestedView.clear();
    ++mRequest;
}

void LiveTaskSwitcher::publish()
{
    const QPointer<LiveTaskSwitcher> self(this);
    if (mRows.show(mViews, mCurrentView)) {
        Q_EMIT static_cast<TelvaroTaskSwitcher*>(mObject)->viewsChanged();
    }
    if (self && mPublishedCurrentView != mCurrentView) {
        mPublishedCurrentView = mCurrentView;
        Q_EMIT static_cast<TelvaroTaskSwitcher*>(mObject)->currentViewChanged();
    }
}

void LiveTaskSwitcher::onRequestAnswered(bool isRefused)
{
    mIsRequestAnswered = true;
    if (isRefused || mIsRequestedViewNamed) {
        mRequestedView.clear();
    }
}
