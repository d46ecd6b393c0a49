#pragma once

#include <array>
#include <memory>
#include <optional>
#include <QAbstractItemModel>
#include <unordered_map>
#include <vector>

#include "differences/DifferenceTexts.h"
#include "project/TakeOver.h"

namespace differences {

/// Whether a row is in both projects or in one of them.
enum class RowKind : std::uint8_t { Changed, OnlyHere, OnlyThere };
inline constexpr std::size_t kRowKinds = 3;

/// The differences between two projects as a tree: tables, rows, settings side by side. Settings
/// are put into words when they are looked at.
class DifferenceModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { kDifference, kHere, kThere, kColumnCount };

    /// `texts` is borrowed.
    explicit DifferenceModel(const MResources::TextTable& texts, QObject* parent = nullptr);

    /// Null: nothing is known.
    void Show(std::shared_ptr<const project::Differences> differences);
    /// What the projects are called, for the headings.
    void SetNames(const QString& here, const QString& there);
    /// Shows only rows of some kinds in which a text occurs, by name, archive or a text field.
    void Filter(const std::array<bool, kRowKinds>& kinds, const QString& text);

    [[nodiscard]] const project::Differences* Differences() const { return differences_.get(); }
    [[nodiscard]] std::size_t CountOf(RowKind kind) const {
        return counts_[static_cast<std::size_t>(kind)];
    }
    [[nodiscard]] std::size_t RowCount() const;    // rows that differ
    [[nodiscard]] std::size_t ShownCount() const;  // of them

    /// What taking over an index means; a table's: all its rows that are shown.
    void AddWanted(const QModelIndex& index, std::vector<project::Wanted>& wanted) const;
    /// The row that an index belongs to; null for a table's.
    [[nodiscard]] const ado::RowChange* RowAt(const QModelIndex& index) const;
    /// The column of a setting; empty for others.
    [[nodiscard]] std::string ColumnAt(const QModelIndex& index) const;
    /// The index of the row before or behind the one to which an index belongs; an invalid one
    /// stands in front of all.
    [[nodiscard]] QModelIndex NextRow(const QModelIndex& from, bool forward) const;
    /// The index of a row by its table and its place in it, or the nearest one before.
    [[nodiscard]] QModelIndex IndexNear(const std::string& table, int place) const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    /// A node of the first level: the rows of a table, or a table or column that one side lacks.
    struct Group {
        std::string table;
        std::vector<std::size_t> shown;  // places among the rows of the differences
        std::optional<project::TableDifference> lack{};
    };

    void MakeGroups();
    [[nodiscard]] bool IsShown(const ado::RowChange& row) const;
    [[nodiscard]] std::size_t PlaceOf(const QModelIndex& index) const;
    [[nodiscard]] const QList<FieldLine>& FieldsOf(std::size_t place) const;
    [[nodiscard]] QString GroupText(const Group& group, int column) const;
    [[nodiscard]] QString RowText(const ado::RowChange& row, int column) const;

    const MResources::TextTable& texts_;
    std::shared_ptr<const project::Differences> differences_;
    std::optional<DifferenceTexts> words_;  // of the differences
    QString here_;
    QString there_;
    std::array<bool, kRowKinds> kinds_{true, true, true};
    QString text_;
    std::array<std::size_t, kRowKinds> counts_{};
    std::vector<Group> groups_;
    mutable std::unordered_map<std::size_t, QList<FieldLine>> fields_;  // by place
};

[[nodiscard]] RowKind KindOf(const ado::RowChange& row);

}  // namespace differences
