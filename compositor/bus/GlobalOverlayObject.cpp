// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/GlobalOverlayObject.h"

#include "GlobalOverlayObjectAdaptor.h"
#include "bus/GatedAdaptor.h"
#include "shell/OverlayPanel.h"

GlobalOverlayObject::GlobalOverlayObject(OverlayPanel& panel, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mPanel(panel)
{
    new GatedAdaptor<GlobalOverlayObjectAdaptor>(this, gate);
}

void GlobalOverlayObject::Show(const QString& message)
{
    mPanel.show(message);
}

void GlobalOverlayObject::Hide()
{
    mPanel.hide();
}
