// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Digest.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

/// What a client on Qt has read last.
template <typename View> struct QtResult
{
    QList<View> views;
    View view;
    QString text;

    void add(Digest& digest) const
    {
        for (const View& listed : views) {
            addView(digest, listed);
        }
        addView(digest, view);
        addText(digest, text);
    }

private:
    static void addView(Digest& digest, const View& view)
    {
        for (const QString& field : {view.uuid, view.appId, view.info1, view.info2, view.info3, view.info4}) {
            addText(digest, field);
        }
        digest.add(std::uint64_t{view.pid});
        digest.add(std::uint64_t{view.sortIndex});
        for (auto attribute = view.attributes.cbegin(); attribute != view.attributes.cend(); ++attribute) {
            addText(digest, attribute.key());
            addText(digest, attribute.value().toString());
        }
    }

    static void addText(Digest& digest, const QString& text)
    {
        const QByteArray utf8 = text.toUtf8();
        digest.add(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
    }
};
