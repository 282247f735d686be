// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "data/xml.h"

namespace kestrel {

/// What the five classes of the coefficient model do alike: write themselves into an XML element, and read themselves
/// back from one. None of them has an error handler; errors pass to the operation that started the reading or writing.
///
/// `Self` has FNodeName(), LoadNode() and write_into(), which adds its own values and then the objects it holds.
template <typename Self>
class XmlRecord {
  public:
    /// This object's element: the last child of `parent`, or the root of a new document when none is given.
    data::XmlElement CreateNode(data::XmlElement parent = {}) const {
        data::XmlElement element =
            parent ? parent.append(Self::FNodeName()) : data::XmlDocument::with_root(Self::FNodeName()).root();
        static_cast<const Self&>(*this).write_into(element);
        return element;
    }

    std::string XML() const { return CreateNode().xml(); }

    /// Fills this object from an XML text, whatever the name of its root element. When it throws, nothing has changed.
    void XML(std::string_view text) { static_cast<Self&>(*this).LoadNode(data::XmlDocument::parse(text).root()); }

    /// Text of the first node that `path` (a child's name, or "@" and an attribute's) selects; empty when none is.
    static std::string GetNodeText(const data::XmlElement& element, std::string_view path) {
        return element.node_text(path);
    }
};

}  // namespace kestrel
