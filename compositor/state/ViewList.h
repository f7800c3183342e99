// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "state/View.h"

#include <QObject>
#include <QStringList>
#include <QVector>

/// All views in the order of their appearance, and the current one.
class ViewList : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const QVector<View>& views() const
    {
        return mViews;
    }
    /// Null when there is no such view.
    const View* find(const QString& uuid) const;

    /// Empty when there is no view, unless announceAsCurrent() says otherwise.
    QString current() const
    {
        return mAnnounced.value_or(mRecent.isEmpty() ? QString() : mRecent.last());
    }
    const View* currentView() const
    {
        return find(current());
    }
    /// Returns the uuids of all views, the current one first and the others in the order of their last use.
    QStringList recent() const;
    /// Returns the uuid of the view after (1) or before (-1) the current one among those of its application, in the
    /// order of their sort indices and from the last to the first. Empty when there is no view.
    QString neighbour(int step) const;
    /// Returns false when there is no such view.
    bool setCurrent(const QString& uuid);
    /// Makes any text the current one, also one that is no view's or empty, until a view is made current or added.
    void announceAsCurrent(const QString& text);

    /// Sets whose window is the panel instead of a view.
    void setPanelAppId(const QString& appId)
    {
        mPanelAppId = appId;
    }
    /// Returns whether a new window of the application would be the panel.
    bool wantsPanel(const QString& appId) const
    {
        return !mPanelAppId.isEmpty() && appId == mPanelAppId && mPanel.uuid.isEmpty();
    }
    /// The panel, which is none of views(); its uuid is empty while there is none.
    const View& panel() const
    {
        return mPanel;
    }

    /// Adds `view` as the current one, with the next sort index of its application, or with `sortIndex`.
    void add(View view, const std::optional<quint32>& sortIndex = {});
    /// Adds the view of a window, or makes it the panel.
    void addWindow(const View& view);
    /// The view that was current before a removed current one becomes current.
    void remove(const QString& uuid);

    void change(const QString& uuid, const ViewChange& change);
    /// Arranges the views of `uuids` in this order, in the places that they have together.
    void arrange(const QStringList& uuids);

    void setAppId(const QString& uuid, const QString& appId);
    void setTitle(const QString& uuid, const QString& title);
    void setSize(const QString& uuid, const QSize& size);
    void setDialog(const QString& uuid, bool isDialog);
    void setResponding(const QString& uuid, bool isResponding);

Q_SIGNALS:
    /// Emitted before currentChanged() when both change.
    void viewsChanged();
    void currentChanged();
    void panelChanged();

private:
    View* find(const QString& uuid);
    quint32 nextSortIndex(const QString& appId) const;
    template <typename Value> void assign(const QString& uuid, Value View::*member, const Value& value);

    QVector<View> mViews;
    /// The uuids, the most recently current one at the end.
    QStringList mRecent;
    QString mPanelAppId;
    View mPanel;
    std::optional<QString> mAnnounced;
};
