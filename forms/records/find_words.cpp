// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/records/find_words.h"

namespace kestrel {

FoundWords find_words(const QString& words, const QTextCursor& from, QTextDocument::FindFlags direction) {
    const QTextDocument& text = *from.document();
    const QTextCursor place = text.find(words, from, direction);
    if (!place.isNull()) {
        return {place, false};
    }
    QTextCursor other_end = from;
    other_end.movePosition(direction.testFlag(QTextDocument::FindBackward) ? QTextCursor::End : QTextCursor::Start);
    return {text.find(words, other_end, direction), true};
}

}  // namespace kestrel
