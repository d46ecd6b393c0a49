#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "jet/TableWriter.h"

namespace ado {

/// The values that have been assigned to fields of a row and are not stored yet, in the order of
/// the fields.
class PendingEdits {
public:
    [[nodiscard]] bool IsEmpty() const { return fields_.empty(); }
    void Clear() {
        fields_.clear();
        values_.clear();
    }

    /// `column` is the field's place in its table.
    void Set(std::size_t field, std::size_t column, jet::Value value) {
        const auto at = std::lower_bound(fields_.begin(), fields_.end(), field);
        const auto place = values_.begin() + (at - fields_.begin());
        if (at != fields_.end() && *at == field) {
            place->value = std::move(value);
        } else {
            fields_.insert(at, field);
            values_.insert(place, {column, std::move(value)});
        }
    }
    /// Null when the field has not been assigned.
    [[nodiscard]] const jet::Value* Find(std::size_t field) const {
        const auto at = std::lower_bound(fields_.begin(), fields_.end(), field);
        if (at == fields_.end() || *at != field) return nullptr;
        return &values_[static_cast<std::size_t>(at - fields_.begin())].value;
    }

    [[nodiscard]] std::span<const std::size_t> Fields() const { return fields_; }
    /// Of the fields at the same positions.
    [[nodiscard]] std::span<const jet::Assignment> Assignments() const { return values_; }

private:
    std::vector<std::size_t> fields_;
    std::vector<jet::Assignment> values_;
};

}  // namespace ado
