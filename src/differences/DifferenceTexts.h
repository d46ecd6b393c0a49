#pragma once

#include <cstddef>
#include <QList>
#include <QString>
#include <string>
#include <string_view>

#include "ado/RowChange.h"
#include "project/Differences.h"
#include "texts/MResources.h"

namespace differences {

/// A setting in which a row differs.
struct FieldLine {
    QString caption;
    QString here;
    QString there;
    std::string column;  // where it is stored
};

/// The differences between two projects in the words of the interface. `before` of the differences
/// is called "there", `after` "here". Both are borrowed.
class DifferenceTexts {
public:
    DifferenceTexts(const MResources::TextTable& texts, const project::Differences& differences)
        : texts_(texts), differences_(differences) {}

    /// What the row is called here, or there when it is not here.
    [[nodiscard]] QString NameOf(const ado::RowChange& row) const;
    /// What the row is called on one side; empty when it is not there.
    [[nodiscard]] QString NameIn(const ado::RowChange& row, bool here) const;
    /// "renamed, moved"
    [[nodiscard]] QString WhatOf(const ado::RowChange& row) const;
    /// The settings that differ; of a row that only one side has those that hold something.
    [[nodiscard]] QList<FieldLine> FieldsOf(const ado::RowChange& row) const;
    /// "Trends: 12"
    [[nodiscard]] QString TableText(const std::string& table, std::size_t count) const;
    [[nodiscard]] QString TextOf(const project::TableDifference& difference) const;

private:
    [[nodiscard]] QString CaptionOf(const ado::RowChange& row, const std::string& column,
                                    int caption) const;
    [[nodiscard]] QString ValueText(const ado::Value& value) const;
    /// With the name of the row of `target` whose ID it is.
    [[nodiscard]] QString ReferenceText(std::string_view target, const ado::Value& value,
                                        bool here) const;

    const MResources::TextTable& texts_;
    const project::Differences& differences_;
};

/// "1,024", as the language writes it.
[[nodiscard]] QString NumberText(std::size_t number, const MResources::TextTable& texts);

}  // namespace differences
