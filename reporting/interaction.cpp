// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "reporting/interaction.h"

#include "base/errors.h"

namespace kestrel::reporting {

namespace {
thread_local ScopedInteraction* t_innermost = nullptr;
}

Interaction& current_interaction() {
    if (t_innermost == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet,
                                 "This thread has nobody to speak to: no interaction is set");
    }
    return *t_innermost->m_current;
}

ScopedInteraction::ScopedInteraction(Interaction& current) : m_current(&current), m_outer(t_innermost) {
    t_innermost = this;
}

ScopedInteraction::~ScopedInteraction() {
    ScopedInteraction** place = &t_innermost;
    while (*place != nullptr && *place != this) {
        place = &(*place)->m_outer;
    }
    if (*place == this) {
        *place = m_outer;
    }
}

}  // namespace kestrel::reporting
