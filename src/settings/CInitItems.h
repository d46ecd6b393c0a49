#pragma once

#include <memory>
#include <QHash>
#include <QString>
#include <vector>

class CInitItem;

/// The nodes of one level of the settings, in the order in which they were added.
///
/// Names compare without case, and the quotes of an argument do not count: `Columns("TrendVar")`
/// and `columns(TrendVar)` are one node, since they are one column.
class CInitItems {
public:
    CInitItems();
    ~CInitItems();
    CInitItems(const CInitItems&) = delete;
    CInitItems& operator=(const CInitItems&) = delete;

    /// nullptr when there is none.
    [[nodiscard]] CInitItem* Item(QStringView name) const;
    /// By position, from 0. REQUIRES: position < Count().
    [[nodiscard]] CInitItem& At(std::size_t position) const { return *items_[position]; }
    [[nodiscard]] std::size_t Count() const noexcept { return items_.size(); }
    /// The node of that name; a new one at the end when there is none.
    CInitItem& Add(QStringView name);
    void Remove(QStringView name);
    void Clear();

    [[nodiscard]] auto begin() const noexcept { return items_.begin(); }
    [[nodiscard]] auto end() const noexcept { return items_.end(); }

private:
    std::vector<std::unique_ptr<CInitItem>> items_;
    QHash<QString, CInitItem*> byName_;  // by folded name
};
