// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroTaskSwitcher.h>

#include <QWidget>

class QString;

/// One note: a heading, a text to write in, and a button to the next one.
class NoteWindow : public QWidget
{
    Q_OBJECT

public:
    NoteWindow(const QString& title, TelvaroTaskSwitcher& taskSwitcher);
};
