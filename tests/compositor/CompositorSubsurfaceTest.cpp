// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"
#include "WireClient.h"

#include <presentation-time-client-protocol.h>
#include <unistd.h>
#include <wayland-client-protocol.h>

namespace {

/// The place of a window of 300 x 200 on the output of 1024 x 600 below the status bar.
constexpr QPoint cOrigin(362, 34 + 183);
constexpr QSize cPartSize(40, 30);
constexpr QPoint cPosition(20, 30);

} // namespace

/// The synchronized and the other mode of subsurfaces.
class CompositorSubsurfaceTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aSynchronizedSubsurfaceWaitsForItsParent();
    void anotherSubsurfaceDoesNotWait();
    void aSubsurfaceOfASynchronizedOneWaitsToo();
    void waitingCommitsAreApplied();
    void whatIsNotCommittedStaysPending();
    void aSubsurfaceMovesWithItsParentsCommit();
    void aSubsurfaceIsAddedWithItsParentsCommit();
    void aSubsurfaceIsRestackedWithItsParentsCommit();
    void aSubsurfaceGoesAtOnce();
    void hostileCommitsHarmNobody();

private:
    struct Part
    {
        quint32 surface;
        quint32 subsurface;
    };

    void openWindow();
    Part addPart(quint32 parent, bool isSynchronized);
    quint32 createBuffer(const QColor& colour);
    void attach(const Part& part, const QColor& colour);
    /// Attaches a buffer and commits it.
    void paint(const Part& part, const QColor& colour);
    /// The colour at a place in the window.
    QColor colourAt(const QPoint& position);

    std::unique_ptr<WireClient> mClient;
    quint32 mWindow = 0;
};

void CompositorSubsurfaceTest::openWindow()
{
    mClient = wireClient();
    mWindow = mClient->openWindow("Window").surface;
    TRY_COMPARE(CompositorBus::views().size(), 1);
}

CompositorSubsurfaceTest::Part CompositorSubsurfaceTest::addPart(quint32 parent, bool isSynchronized)
{
    Part part = {};
    part.surface = mClient->createSurface();
    part.subsurface = mClient->createSubsurface(part.surface, parent);
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_POSITION).number(cPosition.x()).number(cPosition.y()));
    if (!isSynchronized) {
        mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_DESYNC));
    }
    mClient->commit(parent);
    return part;
}

quint32 CompositorSubsurfaceTest::createBuffer(const QColor& colour)
{
    const quint32 buffer = mClient->createBuffer(cPartSize);
    QImage image(cPartSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(colour);
    if (pwrite(mClient->memory(), image.constBits(), static_cast<std::size_t>(image.sizeInBytes()), 0)
        != image.sizeInBytes()) {
        qFatal("cannot paint");
    }
    return buffer;
}

void CompositorSubsurfaceTest::attach(const Part& part, const QColor& colour)
{
    mClient->attach(part.surface, createBuffer(colour));
    mClient->damage(part.surface, QRect(QPoint(), cPartSize));
}

void CompositorSubsurfaceTest::paint(const Part& part, const QColor& colour)
{
    attach(part, colour);
    mClient->commit(part.surface);
}

QColor CompositorSubsurfaceTest::colourAt(const QPoint& position)
{
    mClient->synchronise();
    return screenShot().pixelColor(cOrigin + position + QPoint(5, 5));
}

void CompositorSubsurfaceTest::aSynchronizedSubsurfaceWaitsForItsParent()
{
    openWindow();
    const Part part = addPart(mWindow, true);
    paint(part, Qt::red);
    QCOMPARE(colourAt(cPosition), QColor(Qt::white));
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    paint(part, Qt::green);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::green));
    QVERIFY2(mClient->synchronise(), mClient->errorText());
}

void CompositorSubsurfaceTest::anotherSubsurfaceDoesNotWait()
{
    openWindow();
    const Part part = addPart(mWindow, false);
    paint(part, Qt::red);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    // What has been committed while it was synchronized is applied with its next commit.
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_SYNC));
    paint(part, Qt::green);
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_DESYNC));
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    mClient->commit(part.surface);
    QCOMPARE(colourAt(cPosition), QColor(Qt::green));
}

void CompositorSubsurfaceTest::aSubsurfaceOfASynchronizedOneWaitsToo()
{
    openWindow();
    const Part part = addPart(mWindow, true);
    const Part inner = addPart(part.surface, false);
    paint(part, Qt::red);
    paint(inner, Qt::blue);
    QCOMPARE(colourAt(cPosition), QColor(Qt::white));
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    QCOMPARE(colourAt(2 * cPosition), QColor(Qt::blue));
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_DESYNC));
    paint(inner, Qt::green);
    QCOMPARE(colourAt(2 * cPosition), QColor(Qt::green));
}

void CompositorSubsurfaceTest::waitingCommitsAreApplied()
{
    openWindow();
    const Part part = addPart(mWindow, true);
    const quint32 presentation = mClient->bind("wp_presentation");
    const auto requestFeedback = [&] {
        const quint32 feedback = mClient->newId();
        mClient->send(WireMessage(presentation, WP_PRESENTATION_FEEDBACK).number(part.surface).number(feedback));
        return feedback;
    };
    const auto outcome = [&](quint32 feedback) {
        mClient->synchronise();
        const auto events = mClient->events(feedback);
        return events.isEmpty() ? -1 : int(events.last().opcode);
    };
    const quint32 first = requestFeedback();
    paint(part, Qt::red);
    const quint32 second = requestFeedback();
    // Has no buffer of its own.
    mClient->commit(part.surface);
    const quint32 callback = mClient->newId();
    mClient->send(WireMessage(part.surface, WL_SURFACE_FRAME).number(callback));
    mClient->commit(part.surface);
    const int discarded = 2;
    QCOMPARE(outcome(first), discarded);
    QCOMPARE(outcome(second), discarded);
    QCOMPARE(mClient->events(callback).size(), 0);
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    const auto isShown = [&] {
        return mClient->synchronise() && mClient->events(callback).size() == 1;
    };
    TRY_VERIFY(isShown());
}

void CompositorSubsurfaceTest::whatIsNotCommittedStaysPending()
{
    openWindow();
    const Part part = addPart(mWindow, true);
    paint(part, Qt::red);
    attach(part, Qt::green);
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    mClient->commit(part.surface);
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::green));
}

void CompositorSubsurfaceTest::aSubsurfaceMovesWithItsParentsCommit()
{
    openWindow();
    const Part part = addPart(mWindow, false);
    paint(part, Qt::red);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_POSITION).number(120).number(110));
    mClient->commit(part.surface);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    mClient->commit(mWindow);
    QCOMPARE(colourAt(cPosition), QColor(Qt::white));
    QCOMPARE(colourAt(QPoint(120, 110)), QColor(Qt::red));
}

void CompositorSubsurfaceTest::aSubsurfaceIsAddedWithItsParentsCommit()
{
    openWindow();
    Part part = {};
    part.surface = mClient->createSurface();
    part.subsurface = mClient->createSubsurface(part.surface, mWindow);
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_SET_DESYNC));
    paint(part, Qt::red);
    QCOMPARE(colourAt(QPoint()), QColor(Qt::white));
    mClient->commit(mWindow);
    QCOMPARE(colourAt(QPoint()), QColor(Qt::red));
}

void CompositorSubsurfaceTest::aSubsurfaceIsRestackedWithItsParentsCommit()
{
    openWindow();
    const Part red = addPart(mWindow, false);
    const Part green = addPart(mWindow, false);
    paint(red, Qt::red);
    paint(green, Qt::green);
    QCOMPARE(colourAt(cPosition), QColor(Qt::green));
    const auto colourAfter = [&](const Part& part, quint16 request, quint32 sibling) {
        const QColor before = colourAt(cPosition);
        mClient->send(WireMessage(part.subsurface, request).number(sibling));
        mClient->commit(part.surface);
        if (colourAt(cPosition) != before) {
            return QColor();
        }
        mClient->commit(mWindow);
        return colourAt(cPosition);
    };
    QCOMPARE(colourAfter(red, WL_SUBSURFACE_PLACE_ABOVE, green.surface), QColor(Qt::red));
    QCOMPARE(colourAfter(red, WL_SUBSURFACE_PLACE_BELOW, green.surface), QColor(Qt::green));
    QCOMPARE(colourAfter(green, WL_SUBSURFACE_PLACE_BELOW, mWindow), QColor(Qt::red));
    QCOMPARE(colourAfter(red, WL_SUBSURFACE_PLACE_BELOW, green.surface), QColor(Qt::white));
    QCOMPARE(colourAfter(green, WL_SUBSURFACE_PLACE_ABOVE, mWindow), QColor(Qt::green));
    QVERIFY2(mClient->synchronise(), mClient->errorText());
}

void CompositorSubsurfaceTest::aSubsurfaceGoesAtOnce()
{
    openWindow();
    const Part part = addPart(mWindow, false);
    paint(part, Qt::red);
    QCOMPARE(colourAt(cPosition), QColor(Qt::red));
    mClient->send(WireMessage(part.subsurface, WL_SUBSURFACE_DESTROY));
    QCOMPARE(colourAt(cPosition), QColor(Qt::white));
}

void CompositorSubsurfaceTest::hostileCommitsHarmNobody()
{
    expectComplaints(10);
    openWindow();
    const std::unique_ptr<WireClient> witness = std::move(mClient);
    const quint32 witnessWindow = mWindow;
    {
        // Commits that wait for a parent that is never committed, and end with their surface or their client.
        mClient = wireClient();
        mWindow = mClient->openWindow("Hostile").surface;
        quint32 parent = mWindow;
        for (int i = 0; i < 40; ++i) {
            const Part part = addPart(parent, i % 3 != 0);
            paint(part, Qt::red);
            mClient->send(WireMessage(part.surface, WL_SURFACE_FRAME).number(mClient->newId()));
            mClient->commit(part.surface);
            parent = part.surface;
        }
        const Part gone = addPart(mWindow, true);
        const quint32 buffer = createBuffer(Qt::blue);
        mClient->attach(gone.surface, buffer);
        mClient->commit(gone.surface);
        mClient->send(WireMessage(buffer, WL_BUFFER_DESTROY));
        mClient->send(WireMessage(gone.surface, WL_SURFACE_DESTROY));
        mClient->commit(mWindow);
        mClient->send(WireMessage(gone.subsurface, WL_SUBSURFACE_SET_SYNC));
        mClient->send(WireMessage(gone.subsurface, WL_SUBSURFACE_DESTROY));
        for (int i = 0; i < 5000; ++i) {
            mClient->commit(parent);
            mClient->commit(mWindow);
        }
        QVERIFY2(mClient->synchronise(), mClient->errorText());
        screenShot();
        const Part last = addPart(mWindow, true);
        paint(last, Qt::red);
        mClient->disconnect();
    }
    TRY_COMPARE(CompositorBus::views().size(), 1);
    mClient = wireClient();
    QVERIFY2(mClient->synchronise(), mClient->errorText());
    witness->commit(witnessWindow);
    QVERIFY2(witness->synchronise(), witness->errorText());
    screenShot();
    mClient.reset();
}

TELVARO_TEST_MAIN(CompositorSubsurfaceTest)

#include "CompositorSubsurfaceTest.moc"
