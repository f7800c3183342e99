// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/InputLayer.h"
#include "shell/KeyboardPage.h"

#include <QObject>
#include <QString>
#include <QVector>

class Keymap;
class Output;
class Scene;

/// The on-screen keyboard, below the work area. It has the keys of the applications' keyboard layout.
class OnScreenKeyboard : public QObject, public InputLayer
{
    Q_OBJECT

public:
    OnScreenKeyboard(Output& output, Scene& scene, QObject* parent = nullptr);

    /// To be called before it is opened; `keymap` must outlive it.
    void setKeymap(const Keymap& keymap)
    {
        mKeymap = &keymap;
    }

    bool isOpen() const;
    /// Opens it with the letters, or with the digits where numbers are typed.
    void open();
    void close();
    void setNumeric(bool isNumeric);

    bool contains(const QPoint& position) override;
    void press(const QPoint& position) override;
    void release(const QPoint& position) override;
    bool keepsPopups() const override
    {
        return true;
    }
    QRegion update() override;
    void paint(QPainter* painter) const override;

Q_SIGNALS:
    void characterTyped(const QString& character);
    /// Of keys without a character, in the numbers of Qt.
    void keyPressed(int key);
    void keyReleased(int key);
    void openChanged();

private:
    void layOut();
    void changed();
    int keyAt(const QPoint& position) const;
    void trigger(const KeyboardPage::Key& key);
    void show(KeyboardPage::Page page);
    void paintKey(QPainter* painter, int index) const;

    Output& mOutput;
    Scene& mScene;
    const Keymap* mKeymap = nullptr;
    KeyboardPage::Page mPage = KeyboardPage::Page::Letters;
    bool mIsNumeric = false;
    /// Shift has been pressed twice.
    bool mIsLocked = false;
    QVector<KeyboardPage::Key> mKeys;
    int mPressed = -1;
    bool mHasChanged = false;
};
