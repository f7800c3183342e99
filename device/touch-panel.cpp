// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
//
// touch-panel FIFO: a multi-touch panel in the virtual device. QEMU's tablet becomes its first finger, so that a
// pointer in a VNC viewer is a finger; lines that are written to the FIFO move up to ten fingers:
//
//     down FINGER X Y
//     move FINGER X Y
//     up FINGER
//     sync            sends what came since the last one as one frame
//
// X and Y are from 0 to 32767 over the whole screen.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <initializer_list>
#include <linux/uinput.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char cTabletName[] = "QEMU Virtio Tablet";
constexpr int cFingers = 10;
constexpr int cLargestPosition = 32767;
constexpr int cLargestTrackingId = 65535;

[[noreturn]] void fail(const char* what)
{
    std::perror(what);
    std::exit(1);
}

int openTablet()
{
    DIR* const directory = opendir("/dev/input");
    if (directory == nullptr) {
        fail("/dev/input");
    }
    while (const dirent* const entry = readdir(directory)) {
        const int device = openat(dirfd(directory), entry->d_name, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        char name[256] = "";
        if (device >= 0 && ioctl(device, EVIOCGNAME(sizeof(name)), name) >= 0 && std::strcmp(name, cTabletName) == 0) {
            closedir(directory);
            return device;
        }
        close(device);
    }
    std::fprintf(stderr, "there is no input device \"%s\"\n", cTabletName);
    std::exit(1);
}

class Panel
{
public:
    Panel()
        : mDevice(open("/dev/uinput", O_WRONLY | O_CLOEXEC))
    {
        if (mDevice < 0) {
            fail("/dev/uinput");
        }
        ioctl(mDevice, UI_SET_EVBIT, EV_KEY);
        ioctl(mDevice, UI_SET_KEYBIT, BTN_TOUCH);
        ioctl(mDevice, UI_SET_EVBIT, EV_ABS);
        ioctl(mDevice, UI_SET_PROPBIT, INPUT_PROP_DIRECT);
        for (const int axis : {ABS_X, ABS_Y, ABS_MT_POSITION_X, ABS_MT_POSITION_Y}) {
            setUpAxis(axis, cLargestPosition);
        }
        setUpAxis(ABS_MT_SLOT, cFingers - 1);
        setUpAxis(ABS_MT_TRACKING_ID, cLargestTrackingId);

        uinput_setup setup{};
        setup.id.bustype = BUS_VIRTUAL;
        std::strcpy(setup.name, "Virtual touch panel");
        if (ioctl(mDevice, UI_DEV_SETUP, &setup) < 0 || ioctl(mDevice, UI_DEV_CREATE) < 0) {
            fail("the panel");
        }
    }

    void down(int finger, int x, int y)
    {
        if (!mIsDown[finger]) {
            mIsDown[finger] = true;
            ++mCount;
            select(finger);
            send(EV_ABS, ABS_MT_TRACKING_ID, mNextTrackingId);
            mNextTrackingId = (mNextTrackingId + 1) % cLargestTrackingId;
            send(EV_KEY, BTN_TOUCH, 1);
        }
        move(finger, x, y);
    }

    void move(int finger, int x, int y)
    {
        if (mIsDown[finger]) {
            select(finger);
            send(EV_ABS, ABS_MT_POSITION_X, x);
            send(EV_ABS, ABS_MT_POSITION_Y, y);
            send(EV_ABS, ABS_X, x);
            send(EV_ABS, ABS_Y, y);
        }
    }

    void up(int finger)
    {
        if (mIsDown[finger]) {
            mIsDown[finger] = false;
            --mCount;
            select(finger);
            send(EV_ABS, ABS_MT_TRACKING_ID, -1);
            send(EV_KEY, BTN_TOUCH, mCount > 0 ? 1 : 0);
        }
    }

    void sync()
    {
        send(EV_SYN, SYN_REPORT, 0);
    }

private:
    void setUpAxis(int axis, int largest)
    {
        uinput_abs_setup setup{};
        setup.code = static_cast<__u16>(axis);
        setup.absinfo.maximum = largest;
        if (ioctl(mDevice, UI_ABS_SETUP, &setup) < 0) {
            fail("an axis of the panel");
        }
    }

    void select(int finger)
    {
        send(EV_ABS, ABS_MT_SLOT, finger);
    }

    void send(int type, int code, int value)
    {
        input_event event{};
        event.type = static_cast<__u16>(type);
        event.code = static_cast<__u16>(code);
        event.value = value;
        if (write(mDevice, &event, sizeof(event)) != sizeof(event)) {
            fail("the panel");
        }
    }

    int mDevice;
    bool mIsDown[cFingers] = {};
    int mCount = 0;
    int mNextTrackingId = 0;
};

class Tablet
{
public:
    explicit Tablet(Panel& panel)
        : mPanel(panel)
        , mDevice(openTablet())
    {
        if (ioctl(mDevice, EVIOCGRAB, 1) < 0) {
            fail("the tablet");
        }
    }

    int device() const
    {
        return mDevice;
    }

    void read()
    {
        input_event event{};
        while (::read(mDevice, &event, sizeof(event)) == sizeof(event)) {
            if (event.type == EV_ABS && event.code == ABS_X) {
                mX = event.value;
            } else if (event.type == EV_ABS && event.code == ABS_Y) {
                mY = event.value;
            } else if (event.type == EV_KEY && event.code == BTN_LEFT) {
                mIsPressed = event.value != 0;
            } else if (event.type == EV_SYN && event.code == SYN_REPORT) {
                mIsPressed ? mPanel.down(0, mX, mY) : mPanel.up(0);
                mPanel.sync();
            }
        }
    }

private:
    Panel& mPanel;
    int mDevice;
    int mX = 0;
    int mY = 0;
    bool mIsPressed = false;
};

void obey(Panel& panel, const char* line)
{
    char command[8] = "";
    int finger = -1;
    int x = -1;
    int y = -1;
    const int count = std::sscanf(line, "%7s %d %d %d", command, &finger, &x, &y);
    const bool isFinger = count >= 2 && finger >= 0 && finger < cFingers;
    const bool isPosition = isFinger && count == 4 && x >= 0 && x <= cLargestPosition && y >= 0 && y <= cLargestPosition;
    if (isPosition && std::strcmp(command, "down") == 0) {
        panel.down(finger, x, y);
    } else if (isPosition && std::strcmp(command, "move") == 0) {
        panel.move(finger, x, y);
    } else if (isFinger && count == 2 && std::strcmp(command, "up") == 0) {
        panel.up(finger);
    } else if (count == 1 && std::strcmp(command, "sync") == 0) {
        panel.sync();
    } else {
        std::fprintf(stderr, "not understood: %s\n", line);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "Usage: touch-panel FIFO\n");
        return 2;
    }
    unlink(argv[1]);
    if (mkfifo(argv[1], 0600) < 0) {
        fail(argv[1]);
    }
    // Also open for writing, so that it does not end when a writer does.
    const int fifo = open(argv[1], O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (fifo < 0) {
        fail(argv[1]);
    }

    Panel panel;
    Tablet tablet(panel);
    std::string line;
    for (;;) {
        pollfd descriptors[] = {{tablet.device(), POLLIN, 0}, {fifo, POLLIN, 0}};
        if (poll(descriptors, 2, -1) < 0) {
            fail("poll");
        }
        tablet.read();
        char byte = 0;
        while (read(fifo, &byte, 1) == 1) {
            if (byte != '\n') {
                line += byte;
            } else {
                obey(panel, line.c_str());
                line.clear();
            }
        }
    }
}
