#pragma once

#include <optional>

#include "settings/CInitItems.h"
#include "settings/InitValue.h"

/// One node of the settings: a segment of a property path. A node with children is an inner node;
/// one without is a leaf and carries a value.
class CInitItem {
public:
    explicit CInitItem(const QString& name) : name_(name) {}

    /// As it was first written.
    [[nodiscard]] const QString& Name() const noexcept { return name_; }
    [[nodiscard]] CInitItems& Items() noexcept { return items_; }
    [[nodiscard]] const CInitItems& Items() const noexcept { return items_; }
    [[nodiscard]] bool IsLeaf() const noexcept { return items_.Count() == 0; }

    /// nullopt for a node that was made on the way to another.
    [[nodiscard]] const std::optional<InitValue>& Value() const noexcept { return value_; }
    void SetValue(const InitValue& value) { value_ = value; }

private:
    QString name_;
    std::optional<InitValue> value_;
    CInitItems items_;
};
