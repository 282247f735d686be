// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kestrel::base {

/// What long work tells, and how it learns that it should stop. Called on the caller's thread only.
///
/// Cancelling is never an exception: each stage asks before it says anything, cleans up like a failed stage, and shows
/// no message.
class Progress {
  public:
    virtual ~Progress() = default;

    /// \param fraction of the whole work that is done, 0 to 1, never falling.
    /// \param text what is being done now, for people.
    /// \return true to go on, false to stop; once false, false for the rest of the work.
    virtual bool report(double fraction, std::string_view text) = 0;

    /// Whether report() has answered, or would answer, "stop".
    virtual bool cancelled() const = 0;
};

/// Progress that nobody watches and that never stops.
class NoProgress final : public Progress {
  public:
    bool report(double, std::string_view) override { return true; }
    bool cancelled() const override { return false; }
};

}  // namespace kestrel::base
