// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "clients/Digest.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

inline void addTo(Digest& digest, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    digest.add(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
}

/// Adds a view, which is a record of the library or of an application's own.
template <typename View> void addTo(Digest& digest, const View& view)
{
    for (const QString& field : {view.uuid, view.appId, view.info1, view.info2, view.info3, view.info4}) {
        addTo(digest, field);
    }
    digest.add(std::uint64_t{view.pid});
    digest.add(std::uint64_t{view.sortIndex});
    for (auto attribute = view.attributes.cbegin(); attribute != view.attributes.cend(); ++attribute) {
        addTo(digest, attribute.key());
        addTo(digest, attribute.value().toString());
    }
}

/// Requests a change of the service and handles events until `isChanged`.
void awaitChange(const bool& isChanged);

/// The value of the property `views` as it comes from the bus.
QVariant fetchViewsProperty();
