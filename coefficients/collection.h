// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "coefficients/xml_record.h"

namespace kestrel {

/// An ordered collection without keys, counted from 1. Members are shared: a change made through Item() changes the
/// stored one, and the same member may be in it twice.
template <typename Self, typename Member>
class Collection : public XmlRecord<Self> {
  public:
    /// Appends `member`. \throws RuntimeError 91 when it is nothing.
    void Add(std::shared_ptr<Member> member, int line = __builtin_LINE()) {
        if (!member) {
            throw base::RuntimeError(base::kObjectVariableNotSet, "Object variable not set", "Kestrel", line);
        }
        m_members.push_back(std::move(member));
    }

    /// \throws RuntimeError 9 when `position` is not in 1 to Count().
    std::shared_ptr<Member> Item(std::int32_t position, int line = __builtin_LINE()) const {
        return m_members[index_of(position, line)];
    }

    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(m_members.size()); }

    /// Later members move up by one. \throws RuntimeError 9 when `position` is not in 1 to Count().
    void Remove(std::int32_t position, int line = __builtin_LINE()) {
        m_members.erase(m_members.begin() + static_cast<std::ptrdiff_t>(index_of(position, line)));
    }

    auto begin() const noexcept { return m_members.begin(); }
    auto end() const noexcept { return m_members.end(); }

    /// Replaces the members by those of `element`, in document order; nothing is done when it is none. When it throws,
    /// nothing has changed.
    void LoadNode(const data::XmlElement& element) {
        if (!element) {
            return;
        }
        std::vector<std::shared_ptr<Member>> loaded;
        for (const data::XmlElement& child : element.children(Member::FNodeName())) {
            loaded.push_back(std::make_shared<Member>());
            loaded.back()->LoadNode(child);
        }
        m_members = std::move(loaded);
    }

    Collection() = default;
    Collection(Collection&&) noexcept = default;
    Collection& operator=(Collection&&) noexcept = default;
    // A copy would share its members with the original.
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;

  private:
    friend class XmlRecord<Self>;

    void write_into(data::XmlElement& element) const {
        for (const std::shared_ptr<Member>& member : m_members) {
            member->CreateNode(element);
        }
    }

    std::size_t index_of(std::int32_t position, int line) const {
        if (position < 1 || position > Count()) {
            throw base::RuntimeError(base::kSubscriptOutOfRange, "Subscript out of range", "Kestrel", line);
        }
        return static_cast<std::size_t>(position) - 1;
    }

    std::vector<std::shared_ptr<Member>> m_members;
};

}  // namespace kestrel
