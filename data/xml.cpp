// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/xml.h"

#include <fmt/format.h>
#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <new>
#include <pugixml.hpp>

#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"

namespace kestrel::data {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMaxBytes = 16 * 1024 * 1024;
constexpr int kMaxDepth = 256;
constexpr std::string_view kWhiteSpace = " \t\r\n";

base::RuntimeError not_readable(const std::string& what, int line) {
    return {base::kLibraryFailure, what, "Kestrel", line};
}

base::RuntimeError not_readable(std::string_view text, std::size_t offset, std::string_view what, int line) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0: the first line
    return not_readable(fmt::format("line {}, column {}: {}", 1 + std::count(before.begin(), before.end(), '\n'),
                                    1 + before.size() - line_start, what),
                        line);
}

/// Position of the first control character that XML excludes, or npos.
std::size_t find_control_character(std::string_view text) {
    const auto found = std::find_if(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 && kWhiteSpace.find(c) == std::string_view::npos;
    });
    return found == text.end() ? std::string_view::npos : static_cast<std::size_t>(found - text.begin());
}

void require_storable(std::string_view text, int line) {
    if (find_control_character(text) != std::string_view::npos || !base::valid_utf8(text)) {
        throw base::RuntimeError(
            base::kInvalidProcedureCall,
            fmt::format("Invalid procedure call: \"{}\" holds a character that XML cannot hold", text), "Kestrel",
            line);
    }
}

// Encodings

std::string recoded(std::string_view bytes, const std::string& encoding, int line) {
    const iconv_t converter = ::iconv_open("UTF-8", encoding.c_str());
    // The documented value of failure is an integer dressed as a pointer.
    if (converter == reinterpret_cast<iconv_t>(-1)) {  // NOLINT(performance-no-int-to-ptr)
        throw not_readable(fmt::format("The encoding \"{}\" is not known", encoding), line);
    }
    const std::unique_ptr<void, int (*)(iconv_t)> closed_at_end(converter, &::iconv_close);
    std::string input(bytes);
    char* next = input.data();
    std::size_t left = input.size();
    std::string result;
    char block[4096];
    while (left > 0) {
        char* end = block;
        std::size_t room = sizeof block;
        if (::iconv(converter, &next, &left, &end, &room) == static_cast<std::size_t>(-1) && errno != E2BIG) {
            throw not_readable(fmt::format("The text is not valid in its encoding \"{}\"", encoding), line);
        }
        result.append(block, end);
    }
    return result;
}

/// What the XML declaration at the start of `bytes` names; empty when there is none.
std::string declared_encoding(std::string_view bytes) {
    pugi::xml_document declaration;
    if (bytes.starts_with("<?xml")) {
        const std::string_view head = bytes.substr(0, bytes.substr(0, 1024).find("?>") + 2);
        declaration.load_buffer(head.data(), head.size(), pugi::parse_fragment | pugi::parse_declaration,
                                pugi::encoding_utf8);
    }
    return declaration.first_child().attribute("encoding").value();
}

std::string utf8_of(std::string_view bytes, int line) {
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        return recoded(bytes, "UTF-16", line);
    }
    const bool marked = bytes.starts_with("\xEF\xBB\xBF");
    bytes.remove_prefix(marked ? 3 : 0);
    const std::string encoding = marked ? "UTF-8" : declared_encoding(bytes);
    if (encoding.empty()) {
        return base::to_utf8(bytes);
    }
    const auto foreign = [](char c) {
        return (c < '0' || c > '9') && (c < 'A' || c > 'Z') && (c < 'a' || c > 'z') && c != '-' && c != '_' && c != '.';
    };
    if (std::any_of(encoding.begin(), encoding.end(), foreign)) {
        throw not_readable(fmt::format("The encoding \"{}\" is not known", encoding), line);
    }
    return recoded(bytes, encoding, line);
}

// What pugixml lets pass although it is not well-formed

bool legal_reference(std::string_view name) {
    if (!name.starts_with('#')) {
        return name == "amp" || name == "lt" || name == "gt" || name == "quot" || name == "apos";
    }
    const bool hexadecimal = name.starts_with("#x");
    name.remove_prefix(hexadecimal ? 2 : 1);
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), code, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != name.data() + name.size()) {
        return false;
    }
    return code == '\t' || code == '\n' || code == '\r' || (code >= 0x20 && code < 0xD800) ||
           (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

bool legal_references(std::string_view text) {
    for (std::size_t start = text.find('&'); start != std::string_view::npos; start = text.find('&', start + 1)) {
        const std::size_t end = text.find(';', start);
        if (end == std::string_view::npos || !legal_reference(text.substr(start + 1, end - start - 1))) {
            return false;
        }
    }
    return true;
}

/// Walks a tree whose references were left as they stand, up to the first thing that is wrong.
class Inspection final : public pugi::xml_tree_walker {
  public:
    bool for_each(pugi::xml_node& node) override {
        m_offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
        m_fault = fault_of(node);
        return m_fault.empty();
    }
    std::string_view fault() const { return m_fault; }
    std::size_t offset() const { return m_offset; }

  private:
    std::string_view fault_of(const pugi::xml_node& node) {
        if (depth() >= kMaxDepth) {
            return "Elements are nested too deeply";
        }
        const bool is_text = node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
        if (depth() == 0 && (is_text || ++m_roots > 1)) {
            return "A document has one root element and nothing beside it";
        }
        if (node.type() == pugi::node_pcdata && !legal_references(node.value())) {
            return "Reference to an entity or a character that is not known";
        }
        return fault_of_attributes(node);
    }

    static std::string_view fault_of_attributes(const pugi::xml_node& element) {
        std::vector<std::string_view> names;
        for (const pugi::xml_attribute& attribute : element.attributes()) {
            names.emplace_back(attribute.name());
            const std::string_view value = attribute.value();
            if (value.find('<') != std::string_view::npos || !legal_references(value)) {
                return "An attribute's value is not well-formed";
            }
        }
        std::sort(names.begin(), names.end());
        const bool repeated = std::adjacent_find(names.begin(), names.end()) != names.end();
        return repeated ? "An attribute is given twice" : "";
    }

    std::string_view m_fault;
    std::size_t m_offset = 0;
    int m_roots = 0;
};

void read_tree(pugi::xml_document& tree, const std::string& text, unsigned options, int line) {
    const pugi::xml_parse_result result = tree.load_buffer(text.data(), text.size(), options, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) {
        throw std::bad_alloc();
    }
    if (!result) {
        throw not_readable(text, static_cast<std::size_t>(result.offset), result.description(), line);
    }
}

void inspect(const std::string& text, int line) {
    if (const std::size_t position = find_control_character(text); position != std::string::npos) {
        throw not_readable(text, position, "Control character", line);
    }
    pugi::xml_document raw;
    read_tree(raw, text, (pugi::parse_default & ~pugi::parse_escapes) | pugi::parse_fragment, line);
    Inspection inspection;
    raw.traverse(inspection);
    if (!inspection.fault().empty()) {
        throw not_readable(text, inspection.offset(), inspection.fault(), line);
    }
}

class StringWriter final : public pugi::xml_writer {
  public:
    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
    std::string text;
};

}  // namespace

struct XmlDocument::Tree {
    pugi::xml_document document;
};

struct XmlElement::Node {
    std::shared_ptr<XmlDocument::Tree> tree;
    pugi::xml_node node;
};

XmlDocument::XmlDocument(std::shared_ptr<Tree> tree) : m_tree(std::move(tree)) {}

XmlDocument XmlDocument::with_root(std::string_view element_name) {
    const XmlDocument document(std::make_shared<Tree>());
    XmlElement({document.m_tree, document.m_tree->document}).append(element_name);
    return document;
}

XmlDocument XmlDocument::parse(std::string_view text, int line) {
    if (text.size() > kMaxBytes) {
        throw not_readable(fmt::format("The document is larger than {} bytes", kMaxBytes), line);
    }
    const std::string utf8 = utf8_of(text, line);
    inspect(utf8, line);
    auto tree = std::make_shared<Tree>();
    read_tree(tree->document, utf8, pugi::parse_default, line);
    return XmlDocument(std::move(tree));
}

XmlDocument XmlDocument::load(const std::string& path, int line) {
    std::error_code ignored;  // read_file() says what is wrong with a path
    if (fs::is_other(path, ignored)) {
        throw base::RuntimeError(base::kPathFileAccessError, "This is not a file: " + path, "Kestrel", line);
    }
    const std::uintmax_t size = fs::file_size(path, ignored);
    if (!ignored && size > kMaxBytes) {
        throw not_readable(fmt::format("{}: The document is larger than {} bytes", path, kMaxBytes), line);
    }
    const std::string bytes = base::read_file(path, line);
    try {
        return parse(bytes, line);
    } catch (const base::RuntimeError& error) {
        throw base::RuntimeError(error.number(), path + ": " + error.description(), error.source(), line);
    }
}

XmlElement XmlDocument::root() const {
    return XmlElement({m_tree, m_tree->document.document_element()});
}

std::string XmlDocument::xml() const {
    return root().xml();
}

XmlElement::XmlElement() : m_node(std::make_shared<Node>()) {}
XmlElement::XmlElement(Node node) : m_node(std::make_shared<Node>(std::move(node))) {}

XmlElement::operator bool() const noexcept {
    return static_cast<bool>(m_node->node);
}

std::string XmlElement::name() const {
    return m_node->node.name();
}

std::string XmlElement::text() const {
    class Gathering final : public pugi::xml_tree_walker {
      public:
        bool for_each(pugi::xml_node& node) override {
            text += node.value();
            return true;
        }
        std::string text;
    };
    Gathering gathering;
    m_node->node.traverse(gathering);
    return std::string(base::trimmed(gathering.text, kWhiteSpace));
}

std::string XmlElement::xml() const {
    StringWriter writer;
    m_node->node.print(writer, "", pugi::format_raw, pugi::encoding_utf8);
    return std::move(writer.text);
}

XmlElement XmlElement::child(std::string_view name) const {
    return XmlElement({m_node->tree, m_node->node.child(std::string(name).c_str())});
}

std::vector<XmlElement> XmlElement::children(std::string_view name) const {
    const std::string wanted(name);
    std::vector<XmlElement> found;
    for (const pugi::xml_node& child : m_node->node.children(wanted.c_str())) {
        found.push_back(XmlElement({m_node->tree, child}));
    }
    return found;
}

std::string XmlElement::node_text(std::string_view path) const {
    if (path.starts_with('@')) {
        return std::string(
            base::trimmed(m_node->node.attribute(std::string(path.substr(1)).c_str()).value(), kWhiteSpace));
    }
    return child(path).text();
}

XmlElement XmlElement::append(std::string_view name) {
    if (!*this) {
        throw base::RuntimeError(base::kObjectVariableNotSet,
                                 "Object variable not set: there is no element to build upon");
    }
    const pugi::xml_node child = m_node->node.append_child(std::string(name).c_str());
    if (!child) {
        throw std::bad_alloc();
    }
    return XmlElement({m_node->tree, child});
}

void XmlElement::append(std::string_view name, std::string_view text, int line) {
    require_storable(text, line);
    const XmlElement child = append(name);
    if (!text.empty() && !child.m_node->node.append_child(pugi::node_pcdata).set_value(std::string(text).c_str())) {
        throw std::bad_alloc();
    }
}

void XmlElement::set_attribute(std::string_view name, std::string_view value, int line) {
    require_storable(value, line);
    if (!*this) {
        throw base::RuntimeError(base::kObjectVariableNotSet,
                                 "Object variable not set: there is no element to build upon");
    }
    const std::string key(name);
    pugi::xml_attribute attribute = m_node->node.attribute(key.c_str());
    if (!attribute) {
        attribute = m_node->node.append_attribute(key.c_str());
    }
    if (!attribute.set_value(std::string(value).c_str())) {
        throw std::bad_alloc();
    }
}

}  // namespace kestrel::data
