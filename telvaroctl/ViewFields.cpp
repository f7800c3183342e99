// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewFields.h"

QStringList ViewFields::names()
{
    return {QStringLiteral("uuid"),    QStringLiteral("appId"),      QStringLiteral("title"),
            QStringLiteral("info1"),   QStringLiteral("info2"),      QStringLiteral("info3"),
            QStringLiteral("info4"),   QStringLiteral("pid"),        QStringLiteral("sortIndex"),
            QStringLiteral("current"), QStringLiteral("attributes.")};
}

QVariantMap ViewFields::of(const TelvaroViewModel::View& view, bool isCurrent)
{
    return {
        {QStringLiteral("uuid"), view.uuid},
        {QStringLiteral("appId"), view.appId},
        {QStringLiteral("title"), title(view)},
        {QStringLiteral("info1"), view.info1},
        {QStringLiteral("info2"), view.info2},
        {QStringLiteral("info3"), view.info3},
        {QStringLiteral("info4"), view.info4},
        {QStringLiteral("pid"), view.pid},
        {QStringLiteral("sortIndex"), view.sortIndex},
        {QStringLiteral("current"), isCurrent},
        {QStringLiteral("attributes"), view.attributes},
    };
}

QString ViewFields::title(const TelvaroViewModel::View& view)
{
    return view.attributes.value(QStringLiteral("title"), view.info1).toString();
}
