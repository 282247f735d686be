// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
int main() {
    return 2;
}
