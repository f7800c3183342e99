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

/// The zxdg_output_manager_v1 global, which announces the size of the turned output. QWaylandXdgOutputManagerV1 has a
/// version at which every Qt client logs a warning.
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
