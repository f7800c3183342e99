// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusContext>
#include <QObject>

class CallGate;
class OverlayPanel;

/// The global overlay on the bus. The slots are named as the methods of the interface: the generated adaptor calls them
/// by these names.
class GlobalOverlayObject : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    GlobalOverlayObject(OverlayPanel& panel, CallGate& gate, QObject* parent = nullptr);

public Q_SLOTS:
    void Show(const QString& message);
    void Hide();

private:
    OverlayPanel& mPanel;
};
