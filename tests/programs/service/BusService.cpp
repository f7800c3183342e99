// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusService.h"

#include <stdexcept>
#include <string>

namespace {

void expectResult(const GVariantPointer& reply, guint32 expected)
{
    guint32 result = 0;
    g_variant_get(reply.get(), "(u)", &result);
    if (result != expected) {
        throw std::runtime_error("the bus daemon answered " + std::to_string(result));
    }
}

} // namespace

BusService::BusService(const QString& address)
    : BusConnection(address, {G_DBUS_MESSAGE_TYPE_METHOD_CALL}, [this](GDBusMessage* call) {
        receive(call);
    })
{
}

BusService::~BusService() = default;

void BusService::requestName(const QString& name, bool replaceable)
{
    const guint32 allowReplacementAndReplace = 1 | 2;
    const guint32 doNotQueue = 4;
    const guint32 flags = replaceable ? allowReplacementAndReplace : doNotQueue;
    const guint32 primaryOwner = 1;
    expectResult(callBusDaemon("RequestName", g_variant_new("(su)", name.toUtf8().constData(), flags)), primaryOwner);
}

void BusService::releaseName(const QString& name)
{
    const guint32 released = 1;
    expectResult(callBusDaemon("ReleaseName", g_variant_new("(s)", name.toUtf8().constData())), released);
}
