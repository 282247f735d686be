// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::platform {

class XmlElement;

/// An XML document in memory, over pugixml. Cheap to copy; copies share the tree.
///
/// Reading needs no document type, resolves no external entity and expands none but the five of XML itself and
/// character references; depth (256) and size (64 MiB) are bounded. Input encodings are those that a byte-order mark or
/// declaration names, UTF-8 otherwise, Windows-1252 when that is not valid.
class XmlDocument {
  public:
    /// A document whose root is an empty element of this name.
    static XmlDocument with_root(std::string_view element_name);
    /// \throws RuntimeError (library failure) when the text is not well-formed; the description says what and where.
    static XmlDocument parse(std::string_view text);
    /// \throws RuntimeError 53 when the file is missing, otherwise as parse() with the path in front.
    static XmlDocument load(const std::string& path);

    XmlElement root() const;
    /// The document as flat text, without declaration and without white space between tags.
    std::string xml() const;

  private:
    friend class XmlElement;
    struct Tree;
    std::shared_ptr<Tree> m_tree;
};

/// An element of a document, or none. Keeps its document alive.
class XmlElement {
  public:
    XmlElement();
    explicit operator bool() const noexcept;

    std::string name() const;
    /// The element's text without leading and trailing white space.
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

    /// Appends an empty child element.
    XmlElement append(std::string_view name);
    /// Appends a child element that holds `text`.
    void append(std::string_view name, std::string_view text);
    void set_attribute(std::string_view name, std::string_view value);

  private:
    friend class XmlDocument;
    struct Node;
    std::shared_ptr<Node> m_node;
};

}  // namespace kestrel::platform
