// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "GlobalOverlayObject.h"

#include "GlobalOverlayObjectAdaptor.h"
#include "OverlayPanel.h"

GlobalOverlayObject::GlobalOverlayObject(OverlayPanel& panel, QObject* parent)
    : QObject(parent)
    , mPanel(panel)
{
    new GlobalOverlayObjectAdaptor(this);
}

void GlobalOverlayObject::Show(const QString& message)
{
    mPanel.show(message);
}

void GlobalOverlayObject::Hide()
{
    mPanel.hide();
}
