// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QVector>

#include <cstdint>

struct wl_client;
struct wl_display;
struct wl_global;
struct wl_resource;

class Output;

/// Tells clients the size of the turned output, by the protocol xdg-output. Qt has it, too, but of a version in which
/// it makes every Qt client complain.
class XdgOutput
{
public:
    XdgOutput(wl_display* display, const Output& output);
    ~XdgOutput();
    XdgOutput(const XdgOutput&) = delete;
    XdgOutput& operator=(const XdgOutput&) = delete;

    void announceSize() const;

private:
    static void bind(wl_client* client, void* data, uint32_t version, uint32_t id);
    static void create(wl_client* client, wl_resource* manager, uint32_t id, wl_resource* output);
    static void forget(wl_resource* resource);

    wl_global* mGlobal;
    const Output& mOutput;
    QVector<wl_resource*> mResources;
};
