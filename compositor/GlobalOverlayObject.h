// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>

class OverlayPanel;

/// The global overlay on the bus. Its slots bear the names of the interface's methods.
class GlobalOverlayObject : public QObject
{
    Q_OBJECT

public:
    explicit GlobalOverlayObject(OverlayPanel& panel, QObject* parent = nullptr);

public Q_SLOTS:
    void Show(const QString& message);
    void Hide();

private:
    OverlayPanel& mPanel;
};
