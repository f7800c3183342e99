// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/InputLayer.h"

#include <QObject>
#include <QRect>
#include <QString>
#include <QVector>

class DeskCommands;
class Output;
class Scene;
class ViewList;
class WindowStack;

/// The menu: the views, the most recently used first, and the commands with their keys. While a person steps through
/// the views with a modifier held it has the views only. It takes all input while it is open.
class Menu : public QObject, public InputLayer
{
    Q_OBJECT

public:
    Menu(const Output& output, ViewList& views, WindowStack& stack, const DeskCommands& commands, Scene& scene,
         QObject* parent = nullptr);

    bool isOpen() const
    {
        return mMode != Mode::Closed;
    }
    /// Opens the menu, or closes it.
    void toggle();
    /// Selects the next (1) or previous (-1) view, to be made current by finishSwitching().
    void step(int step);
    /// Makes the selected view current if the menu is open only for that.
    void finishSwitching();
    void close();

    /// `key` includes its modifiers, as in QKeySequence.
    void pressKey(int key);
    /// Moves the selection by a number of rows.
    void moveSelection(int rows);

    bool contains(const QPoint& position) override;
    void press(const QPoint& position) override;
    void release(const QPoint& position) override;
    QRegion update() override;
    void paint(QPainter* painter) const override;

private:
    enum class Mode
    {
        Closed,
        Everything,
        Switching
    };
    struct Row
    {
        QString text;
        QString detail;
        /// Empty for a command.
        QString uuid;
        int command = -1;
        bool canClose = false;

        bool isSame(const Row& other) const
        {
            return uuid == other.uuid && command == other.command;
        }
    };
    enum class Part
    {
        Nothing,
        Row,
        CloseButton,
        More
    };
    struct Target
    {
        Part part = Part::Nothing;
        int index = -1;
        Row row;

        /// The same row may have another index meanwhile.
        bool operator==(const Target& other) const
        {
            return part == other.part && row.isSame(other.row);
        }
    };

    void open(Mode mode);
    void refresh();
    void activate(int row);
    void changed();
    QRect rect() const;
    /// How many rows are visible, besides the one that leads to more of them.
    int pageSize() const;
    bool hasMore() const
    {
        return pageSize() < mRows.size();
    }
    QRect rowRect(int index) const;
    QRect closeRect(int index) const;
    Target targetAt(const QPoint& position) const;
    void paintRow(QPainter* painter, int index) const;

    const Output& mOutput;
    ViewList& mViews;
    WindowStack& mStack;
    const DeskCommands& mCommands;
    Scene& mScene;
    Mode mMode = Mode::Closed;
    QVector<Row> mRows;
    int mSelected = 0;
    int mFirst = 0;
    Target mPressed;
    bool mHasChanged = false;
};
