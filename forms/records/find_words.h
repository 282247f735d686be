// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTextCursor>
#include <QTextDocument>

namespace kestrel {

/// A place in a text.
struct FoundWords {
    /// Null where the words are nowhere in the text.
    QTextCursor place;
    /// Whether an end of the text was passed on the way.
    bool around = false;
};

/// Finds `words` after the selection of `from` or, with FindBackward, before it. At an end of the text it goes on from
/// the other one. Upper and lower case make no difference.
FoundWords find_words(const QString& words, const QTextCursor& from, QTextDocument::FindFlags direction);

}  // namespace kestrel
