#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace projectdb {

class CHNd;

/// An ordered collection of hierarchy nodes, keyed by kind and ID. Nodes stay where they are in
/// memory until the collection is cleared.
class CHNds {
public:
    enum class Kind : std::int16_t { Archive = 0, Trend = 1 };

    CHNds();
    ~CHNds();
    CHNds(CHNds&&) noexcept;
    CHNds& operator=(CHNds&&) noexcept;

    /// Adds a node behind all others; one that is there already is left where it is. Returns it.
    CHNd& Add(Kind kind, std::int32_t id);
    void Clear() noexcept;

    [[nodiscard]] std::size_t Count() const noexcept { return nodes_.size(); }
    /// By position, counted from 0. REQUIRES: position < Count().
    [[nodiscard]] const CHNd& Item(std::size_t position) const { return *nodes_[position]; }
    /// By key; null when there is none.
    [[nodiscard]] const CHNd* Find(Kind kind, std::int32_t id) const;

private:
    std::vector<std::unique_ptr<CHNd>> nodes_;
    std::map<std::pair<Kind, std::int32_t>, CHNd*> byKey_;
};

/// One object of an operation, with those that hang from it: an archive has its trends as children.
class CHNd {
public:
    CHNd(CHNds::Kind kind, std::int32_t id) : kind_(kind), id_(id) {}

    [[nodiscard]] CHNds::Kind Kind() const noexcept { return kind_; }
    /// In the object's own table.
    [[nodiscard]] std::int32_t Id() const noexcept { return id_; }
    [[nodiscard]] const CHNds& Children() const noexcept { return children_; }
    [[nodiscard]] CHNds& Children() noexcept { return children_; }

private:
    CHNds::Kind kind_;
    std::int32_t id_;
    CHNds children_;
};

}  // namespace projectdb
