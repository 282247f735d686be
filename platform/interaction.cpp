// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/contracts/interaction.h"

#include "platform/errors.h"

namespace kestrel::platform {

namespace {
thread_local Interaction* t_current = nullptr;
}

Interaction& interaction() {
    if (t_current == nullptr) {
        throw RuntimeError(kObjectVariableNotSet, "This thread has nobody to speak to: no interaction is set");
    }
    return *t_current;
}

ScopedInteraction::ScopedInteraction(Interaction& current) : m_previous(t_current) {
    t_current = &current;
}

ScopedInteraction::~ScopedInteraction() {
    t_current = m_previous;
}

}  // namespace kestrel::platform
