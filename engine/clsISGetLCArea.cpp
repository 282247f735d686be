// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
