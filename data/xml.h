// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::data {

class XmlElement;

/// An XML document in memory, over pugixml. Cheap to copy; copies share the tree.
///
/// Reading needs no document type and takes nothing from one: no entity is known but the five of XML itself and
/// character references, and a reference to any other is an error. Depth (256 elements) and size (16 MiB) are bounded.
/// The encoding is the one that a byte-order mark or the declaration names, and the text must be valid in it; where
/// neither names one it is UTF-8, or Windows-1252 when that is not valid.
class XmlDocument {
  public:
    /// A document whose root is an empty element of this name.
    static XmlDocument with_root(std::string_view element_name);
    /// \throws RuntimeError (library failure) when the text is not well-formed or beyond a bound; its text tells
    ///         what and where.
    static XmlDocument parse(std::string_view text, int line = __builtin_LINE());
    /// \throws RuntimeError the one that fits when the file cannot be read, otherwise as parse() with the path in
    /// front.
    static XmlDocument load(const std::string& path, int line = __builtin_LINE());

    XmlElement root() const;
    /// The root element as flat text, without declaration and without white space between tags.
    std::string xml() const;

  private:
    friend class XmlElement;
    struct Tree;
    explicit XmlDocument(std::shared_ptr<Tree> tree);
    std::shared_ptr<Tree> m_tree;
};

/// An element of a document, or none: what is read from none is empty, and it cannot be built upon. Keeps its document
/// alive; copies are the same element.
class XmlElement {
  public:
    XmlElement();
    explicit operator bool() const noexcept;

    std::string name() const;
    /// The text in the element and below it, without leading and trailing white space.
    std::string text() const;
    /// The element as flat text; an element without content is written self-closed.
    std::string xml() const;

    /// The first child element of this name, or none.
    XmlElement child(std::string_view name) const;
    /// All child elements of this name, in document order.
    std::vector<XmlElement> children(std::string_view name) const;
    /// Text of the first node that `path` selects below this element: a child's name, or "@" and an attribute's.
    /// Without leading and trailing white space; empty when nothing is selected.
    std::string node_text(std::string_view path) const;

    // Building. Text and values are UTF-8; RuntimeError 5 when they hold a character that XML cannot hold.

    /// Appends an empty child element.
    XmlElement append(std::string_view name);
    /// Appends a child element that holds `text`; an empty one when that is empty.
    void append(std::string_view name, std::string_view text, int line = __builtin_LINE());
    void set_attribute(std::string_view name, std::string_view value, int line = __builtin_LINE());

  private:
    friend class XmlDocument;
    struct Node;
    explicit XmlElement(Node node);
    std::shared_ptr<Node> m_node;
};

}  // namespace kestrel::data
