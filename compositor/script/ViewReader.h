// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "script/JsonReader.h"
#include "script/Script.h"

/// Reads the values of the steps that concern views.
namespace ViewReader {

Script::AddView readView(const JsonReader& reader);
Script::ChangeView readChange(const JsonReader& reader);
Script::OrderViews readOrder(const JsonReader& reader);
Script::AnnounceCurrentView readCurrent(const JsonReader& reader);

} // namespace ViewReader
