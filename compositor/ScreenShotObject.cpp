// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenShotObject.h"

#include "GatedAdaptor.h"
#include "Scene.h"
#include "ScreenShotObjectAdaptor.h"
#include "ScreenshotFile.h"

ScreenShotObject::ScreenShotObject(Scene& scene, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mScene(scene)
{
    new GatedAdaptor<ScreenShotObjectAdaptor>(this, gate);
}

QString ScreenShotObject::ScreenShot(const QString& directory)
{
    ScreenshotFile file(directory);
    if (!file.isDirectoryOpen() || !file.write(mScene.toImage())) {
        sendErrorReply(file.errorName(), file.errorText());
        return {};
    }
    return file.path();
}
