// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import Telvaro 1.0

ViewListModel {}
