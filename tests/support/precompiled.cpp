// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
// For the headers that test programs begin with; they need a source to be compiled for.
