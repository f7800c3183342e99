// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/WindowStack.h"

#include "shell/Scene.h"
#include "state/Output.h"
#include "state/ViewList.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientSurface.h"
#include "wayland/ClientWindow.h"
#include "wayland/Presentation.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

/// Of one client. Bounds the walk from a popup up to its window.
constexpr int cMostPopups = 50;

} // namespace

WindowStack::WindowStack(Output& output, ViewList& views, Scene& scene, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mViews(views)
    , mScene(scene)
{
    connect(&output, &Output::geometryChanged, this, [this] {
        dismissPopups({});
        configureAll();
    });
    // Popups stay open: the text field that has opened the on-screen keyboard may be in one.
    connect(&output, &Output::workAreaChanged, this, &WindowStack::configureAll);
    connect(&views, &ViewList::currentChanged, this, &WindowStack::handleCurrentChanged);
    connect(&views, &ViewList::panelChanged, this, [this] {
        configureAll();
        rearrange();
    });
}

void WindowStack::addWindow(ClientWindow* window)
{
    mWindows.append(window);
    connect(window, &QObject::destroyed, this, [this, window] {
        mWindows.removeOne(window);
    });
    connect(window, &ClientWindow::committed, this, [this, window] {
        handleCommit(window);
    });
    connect(window, &ClientWindow::configureRequested, this, &WindowStack::configureAll);
    connect(window, &ClientWindow::caughtUp, this, &WindowStack::arrangementChanged);
    configureAll();
}

void WindowStack::addPopup(ClientPopup* popup)
{
    connect(popup, &ClientPopup::placementRequested, this, [this, popup] {
        popup->place(boundsOf(popup));
    });
    const auto count = std::count_if(mPopups.cbegin(), mPopups.cend(), [popup](const ClientPopup* other) {
        return other->client() == popup->client();
    });
    if (count >= cMostPopups) {
        popup->dismiss();
        return;
    }
    mPopups.append(popup);
    connect(popup, &QObject::destroyed, this, [this, popup] {
        mPopups.removeOne(popup);
        rearrange();
    });
    connect(popup, &ClientPopup::committed, this, [this, popup] {
        handleCommit(popup);
    });
    connect(popup, &ClientPopup::mappedChanged, this, &WindowStack::rearrange);
}

ClientWindow* WindowStack::current() const
{
    return windowOfView(mViews.current());
}

QRect WindowStack::currentFrame() const
{
    const ClientWindow* const window = current();
    return window == nullptr ? QRect() : frameOf(window, window->windowGeometry().size());
}

bool WindowStack::isSettled() const
{
    const ClientWindow* const window = current();
    return window == nullptr || window->isSettled();
}

bool WindowStack::isBehind() const
{
    const ClientWindow* const window = current();
    return window != nullptr && window->isBehind();
}

bool WindowStack::canClose(const QString& uuid) const
{
    return windowOfView(uuid) != nullptr;
}

void WindowStack::close(const QString& uuid)
{
    ClientWindow* const window = windowOfView(uuid);
    if (window != nullptr && !window->isResponding()) {
        window->endProcess();
    } else if (window != nullptr) {
        window->close();
    }
}

ClientWindow* WindowStack::windowOfView(const QString& uuid) const
{
    const auto found = std::find_if(mWindows.cbegin(), mWindows.cend(), [&uuid](const ClientWindow* window) {
        return window->isMapped() && window->uuid() == uuid;
    });
    return found == mWindows.cend() ? nullptr : *found;
}

ClientWindow* WindowStack::windowOf(const XdgToplevel* toplevel) const
{
    const auto found = std::find_if(mWindows.cbegin(), mWindows.cend(), [toplevel](const ClientWindow* window) {
        return window->toplevel() == toplevel;
    });
    return toplevel == nullptr || found == mWindows.cend() ? nullptr : *found;
}

ClientWindow* WindowStack::panel() const
{
    return windowOfView(mViews.panel().uuid);
}

bool WindowStack::isPanel(const ClientWindow* window) const
{
    return window->isMapped() ? window->uuid() == mViews.panel().uuid
                              : mViews.wantsPanel(window->appId()) && window->parentToplevel() == nullptr;
}

QVector<ClientWindow*> WindowStack::visibleWindows() const
{
    QVector<ClientWindow*> windows = stackedWindows();
    if (ClientWindow* const window = panel()) {
        windows.prepend(window);
    }
    return windows;
}

QRegion WindowStack::visibleArea() const
{
    return QRegion(mOutput.workArea()) + mOutput.panelRect();
}

QVector<ClientWindow*> WindowStack::stackedWindows() const
{
    QVector<ClientWindow*> windows;
    for (ClientWindow* window = current(); window != nullptr; window = windowOf(window->parentToplevel())) {
        windows.prepend(window);
    }
    return windows;
}

ClientWindow* WindowStack::windowOfPopup(const ClientPopup* popup) const
{
    const XdgSurface* ancestor = popup->parentXdgSurface();
    for (int steps = 0; ancestor != nullptr && steps <= mPopups.size(); ++steps) {
        if (ancestor->toplevel() != nullptr) {
            return windowOf(ancestor->toplevel());
        }
        const auto parent = std::find_if(mPopups.cbegin(), mPopups.cend(), [ancestor](const ClientPopup* other) {
            return other->xdgSurface() == ancestor;
        });
        ancestor = parent == mPopups.cend() ? nullptr : (*parent)->parentXdgSurface();
    }
    return nullptr;
}

QVector<ClientPopup*> WindowStack::visiblePopups() const
{
    const QVector<ClientWindow*> windows = visibleWindows();
    QVector<ClientPopup*> popups;
    for (ClientPopup* popup : mPopups) {
        ClientWindow* const window = windowOfPopup(popup);
        if (popup->isOpen() && window != nullptr && windows.contains(window)) {
            popups.append(popup);
        }
    }
    return popups;
}

QRect WindowStack::areaOf(const ClientWindow* window) const
{
    if (isPanel(window)) {
        return mOutput.panelRect();
    }
    return window->wantsFullScreen() ? mOutput.fullScreenArea() : mOutput.maximizedArea();
}

QRect WindowStack::frameOf(const ClientWindow* window, const QSize& size) const
{
    const QRect area = areaOf(window);
    const QPoint margin((area.width() - size.width()) / 2, (area.height() - size.height()) / 2);
    return {area.topLeft() + QPoint(qMax(0, margin.x()), qMax(0, margin.y())), size};
}

/// Returns the top left corner of the window geometry on the output.
QPoint WindowStack::originOf(const XdgSurface* xdgSurface) const
{
    QPoint origin;
    for (int steps = 0; xdgSurface != nullptr && steps <= mPopups.size(); ++steps) {
        if (const ClientWindow* const window = windowOf(xdgSurface->toplevel())) {
            return origin + frameOf(window, window->windowGeometry().size()).topLeft();
        }
        const auto popup = std::find_if(mPopups.cbegin(), mPopups.cend(), [xdgSurface](const ClientPopup* other) {
            return other->xdgSurface() == xdgSurface;
        });
        if (popup == mPopups.cend()) {
            break;
        }
        origin += (*popup)->position();
        xdgSurface = (*popup)->parentXdgSurface();
    }
    return origin + mOutput.workArea().topLeft();
}

QPoint WindowStack::surfacePosition(const XdgSurface* xdgSurface) const
{
    return xdgSurface == nullptr ? QPoint() : originOf(xdgSurface) - xdgSurface->windowGeometry().topLeft();
}

QRect WindowStack::boundsOf(const ClientPopup* popup) const
{
    const XdgSurface* const parent = popup->parentXdgSurface();
    const ClientWindow* const window = windowOfPopup(popup);
    if (window == nullptr) {
        return mOutput.workArea();
    }
    const bool isResized = parent->toplevel() != nullptr && !popup->parentSize().isEmpty();
    const QPoint origin = isResized ? frameOf(window, popup->parentSize()).topLeft() : originOf(parent);
    const QRect area = isPanel(window) ? visibleArea().boundingRect() : areaOf(window);
    return area.translated(-origin);
}

WindowStack::Hit WindowStack::surfaceAt(const QPointF& position) const
{
    Hit hit;
    const QVector<ClientPopup*> popups = visiblePopups();
    for (auto popup = popups.crbegin(); popup != popups.crend(); ++popup) {
        hit.surface = (*popup)->surface()->surfaceAt(position - surfacePosition((*popup)->xdgSurface()), &hit.position);
        if (hit.surface != nullptr) {
            hit.window = windowOfPopup(*popup);
            return hit;
        }
    }
    // Only the topmost window receives input: dialogs are modal.
    const bool isOnPanel = mOutput.panelRect().contains(position.toPoint());
    ClientWindow* const window = isOnPanel ? panel() : current();
    if (window != nullptr && window->surface() != nullptr
        && (isOnPanel || mOutput.workArea().contains(position.toPoint()))) {
        hit.surface = window->surface()->surfaceAt(position - surfacePosition(window->xdgSurface()), &hit.position);
        hit.window = hit.surface == nullptr ? nullptr : window;
    }
    return hit;
}

ClientSurface* WindowStack::keyboardSurface() const
{
    const QVector<ClientPopup*> popups = visiblePopups();
    const auto grabbing = std::find_if(popups.crbegin(), popups.crend(), [](const ClientPopup* popup) {
        return popup->isGrabbing();
    });
    const ClientWindow* const window = current();
    return grabbing != popups.crend() ? (*grabbing)->surface() : window == nullptr ? nullptr : window->surface();
}

void WindowStack::dismissPopups(const Hit& pressed)
{
    const QWaylandSurface* const surface = pressed.surface == nullptr ? nullptr : pressed.surface->surface();
    const QWaylandClient* const client = surface == nullptr ? nullptr : surface->client();
    bool isAny = false;
    for (auto popup = mPopups.crbegin(); popup != mPopups.crend(); ++popup) {
        if ((*popup)->client() != client) {
            (*popup)->dismiss();
            isAny = true;
        }
    }
    if (isAny) {
        rearrange();
    }
}

void WindowStack::sendFrameCallbacks()
{
    const timespec time = Presentation::now();
    for (const ClientWindow* window : visibleWindows()) {
        if (window->surface() != nullptr) {
            window->surface()->sendFrameCallbacks(time);
        }
    }
    for (const ClientPopup* popup : visiblePopups()) {
        popup->surface()->sendFrameCallbacks(time);
    }
}

bool WindowStack::inhibitsIdle() const
{
    const QVector<ClientWindow*> windows = visibleWindows();
    return std::any_of(windows.cbegin(), windows.cend(), [](const ClientWindow* window) {
        return window->surface() != nullptr && window->surface()->inhibitsIdle();
    });
}

void WindowStack::paint(QPainter* painter) const
{
    const ClientWindow* const panelWindow = panel();
    if (panelWindow != nullptr && panelWindow->surface() != nullptr) {
        painter->save();
        painter->setClipRect(mOutput.panelRect(), Qt::IntersectClip);
        panelWindow->surface()->paint(painter, surfacePosition(panelWindow->xdgSurface()));
        painter->restore();
    }
    painter->save();
    painter->setClipRect(mOutput.workArea(), Qt::IntersectClip);
    const QVector<ClientWindow*> windows = stackedWindows();
    for (const ClientWindow* window : windows) {
        if (window->surface() == nullptr) {
            continue;
        }
        if (window != windows.first()) {
            painter->fillRect(mOutput.workArea(), QColor(0, 0, 0, 110));
        }
        window->surface()->paint(painter, surfacePosition(window->xdgSurface()));
    }
    painter->restore();
    painter->setClipRegion(visibleArea(), Qt::IntersectClip);
    for (const ClientPopup* popup : visiblePopups()) {
        popup->surface()->paint(painter, surfacePosition(popup->xdgSurface()));
    }
}

QRegion WindowStack::opaqueRegion() const
{
    QRegion region;
    for (const ClientWindow* window : visibleWindows()) {
        if (window->surface() != nullptr) {
            const QRect area = isPanel(window) ? mOutput.panelRect() : mOutput.workArea();
            region |= window->surface()->opaqueRect().translated(surfacePosition(window->xdgSurface())) & area;
        }
    }
    return region;
}

void WindowStack::configureAll()
{
    const QVector<ClientWindow*> stacked = stackedWindows();
    mOutput.setStatusBarHidden(std::any_of(stacked.cbegin(), stacked.cend(), [](const ClientWindow* window) {
        return window->wantsFullScreen();
    }));
    const ClientWindow* const active = current();
    for (ClientWindow* window : qAsConst(mWindows)) {
        // A panel gets no size until it has a strip: it chooses the thickness of that.
        const QSize size = areaOf(window).size();
        const bool isFullScreen = !isPanel(window) && (mOutput.isFullScreen() || window->wantsFullScreen());
        window->configure(size.isEmpty() ? QSize(0, 0) : size, isFullScreen, window == active);
    }
}

void WindowStack::replaceReactivePopups()
{
    for (ClientPopup* popup : qAsConst(mPopups)) {
        ClientWindow* const window = windowOfPopup(popup);
        if (popup->isReactive() && window != nullptr && window->admitEvent()) {
            popup->replace(boundsOf(popup));
        }
    }
}

void WindowStack::handleCurrentChanged()
{
    dismissPopups({});
    configureAll();
    rearrange();
    Q_EMIT currentChanged();
}

void WindowStack::rearrange()
{
    mIsRearranged = true;
    mScene.requestFrame();
    Q_EMIT arrangementChanged();
    Q_EMIT keyboardSurfaceChanged();
}

void WindowStack::handleCommit(const QObject* source)
{
    const auto isSource = [source](const QObject* other) {
        return other == source;
    };
    const QVector<ClientWindow*> windows = visibleWindows();
    const QVector<ClientPopup*> popups = visiblePopups();
    if (std::any_of(windows.cbegin(), windows.cend(), isSource)
        || std::any_of(popups.cbegin(), popups.cend(), isSource)) {
        mScene.requestFrame();
    }
}

QRegion WindowStack::update()
{
    QRegion damage;
    QVector<QRect> arrangement;
    const auto updateSurface = [&](ClientSurface* surface, const XdgSurface* xdgSurface) {
        const QRegion changed = surface->update();
        const QPoint position = surfacePosition(xdgSurface);
        damage |= changed.translated(position);
        arrangement.append(QRect(position, surface->size()));
    };
    for (const ClientWindow* window : visibleWindows()) {
        if (window->surface() != nullptr) {
            updateSurface(window->surface(), window->xdgSurface());
        }
    }
    for (const ClientPopup* popup : visiblePopups()) {
        updateSurface(popup->surface(), popup->xdgSurface());
    }

    if (arrangement != mArrangement) {
        mArrangement = arrangement;
        mIsRearranged = true;
        replaceReactivePopups();
        Q_EMIT arrangementChanged();
    }
    return std::exchange(mIsRearranged, false) ? visibleArea() : damage & visibleArea();
}
