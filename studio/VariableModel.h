#pragma once

#include <QAbstractItemModel>
#include <QStringMatcher>
#include <vector>

#include "studio/StudioTexts.h"
#include "studio/VariableCatalog.h"

namespace studio {

/// Structures with their variables below them, of which a filter may leave some out. The rows
/// refer to the catalog and copy nothing of it.
class VariableModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { kName, kType, kUnit, kComment, kColumnCount };

    /// Both are borrowed.
    VariableModel(const VariableCatalog& catalog, const StudioTexts& texts,
                  QObject* parent = nullptr);

    /// Shows what has been read since the last call.
    void TakeNew();
    /// Words apart by blanks; shown is every variable that has all of them somewhere: in its
    /// name, type, unit or comment, or in what its structure is called. Case does not matter. An
    /// empty filter shows everything, structures without variables too.
    void SetFilter(const QString& filter);
    [[nodiscard]] bool IsFiltered() const noexcept { return !words_.empty(); }

    /// Number of variables that are shown.
    [[nodiscard]] std::size_t ShownCount() const noexcept { return shownCount_; }
    /// Full name of the variable; empty for a structure.
    [[nodiscard]] QString VariableName(const QModelIndex& index) const;
    /// The variable of that name among those shown; invalid when there is none.
    [[nodiscard]] QModelIndex Find(const QString& name, Qt::CaseSensitivity sensitivity) const;
    [[nodiscard]] QModelIndex FirstVariable() const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    /// What is shown of one structure; there is one for each, in the catalog's order.
    struct Branch {
        std::vector<int> shown;  // positions among the structure's variables
        std::size_t seen = 0;    // variables that the filter has been applied to
        bool visible = false;
    };

    [[nodiscard]] bool Matches(const Structure& structure, const Variable& variable) const;
    [[nodiscard]] std::vector<int> NewMatches(std::size_t structure);
    [[nodiscard]] int RowOf(std::size_t structure) const;
    [[nodiscard]] QString StructureText(std::size_t structure, int column) const;
    [[nodiscard]] QString VariableText(std::size_t structure, int row, int column) const;

    const VariableCatalog& catalog_;
    const StudioTexts& texts_;
    std::vector<QStringMatcher> words_;
    std::vector<Branch> branches_;
    std::vector<std::size_t> visible_;  // the branches that are rows, ascending
    std::size_t shownCount_ = 0;
};

}  // namespace studio
