// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QQmlExtensionPlugin>

class TelvaroQmlPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    explicit TelvaroQmlPlugin(QObject* parent = nullptr);

    void registerTypes(const char* uri) override;
};
