// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "NoteWindow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

NoteWindow::NoteWindow(const QString& title, TelvaroTaskSwitcher& taskSwitcher)
{
    setWindowTitle(title);

    auto* const heading = new QLabel(title);
    heading->setObjectName(QStringLiteral("heading"));
    auto* const next = new QPushButton(tr("Next note"));
    // All windows of a program are views of one application, and this steps through them and around. It returns at
    // once.
    connect(next, &QPushButton::clicked, &taskSwitcher, &TelvaroTaskSwitcher::next);
    auto* const text = new QPlainTextEdit;
    text->setPlaceholderText(tr("Write something"));
    text->setFrameShape(QFrame::NoFrame);

    auto* const top = new QHBoxLayout;
    top->addWidget(heading);
    top->addStretch();
    top->addWidget(next);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->setSpacing(16);
    layout->addLayout(top);
    layout->addWidget(text);
}
