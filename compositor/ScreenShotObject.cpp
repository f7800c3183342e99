// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenShotObject.h"

#include "Scene.h"
#include "ScreenShotObjectAdaptor.h"
#include "ScreenshotFile.h"

ScreenShotObject::ScreenShotObject(Scene& scene, QObject* parent)
    : QObject(parent)
    , mScene(scene)
{
    new ScreenShotObjectAdaptor(this);
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
