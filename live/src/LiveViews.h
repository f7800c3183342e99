// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroViewModel.h"

#include <QList>
#include <QString>
#include <QVariant>

/// The rows of the view model, and how they become those of a newer list.
class LiveViews
{
public:
    using View = TelvaroViewModel::View;

    TelvaroViewModel* getModel();
    const QList<View>& getViews() const;
    int getCurrentRow() const;
    int rowOf(const QString& uuid) const;
    QVariant valueOf(const View& view, int role) const;

    /// Makes the views the rows, and signals how they differ from those before. Returns whether they do. A slot may
    /// delete the model with this object, in which case it returns false, or run an event loop in which a newer list is
    /// shown.
    bool show(const QList<View>& views, const QString& currentView);

private:
    void removeOthers();
    void remove(int row);
    void change(int row, const QString& formerView);
    int findFrom(int first, const QString& uuid) const;
    bool isCurrent(const View& view) const;

    TelvaroViewModel mModel{*this};
    QList<View> mViews;
    QList<View> mTarget;
    QString mCurrentView;
    int mAnnouncedCount = 0;
    int mAnnouncedRow = -1;
    /// Counts the changes of rows other than that the current view is another.
    quint64 mChanges = 0;
};
