#pragma once

#include <cstdint>
#include <vector>

#include "patterns/ArchivePlan.h"
#include "patterns/PatternDialog.h"

class QLineEdit;
class QListWidget;

/// Duplicates an archive as often as a pattern says, with a text of it replaced in each copy. What
/// comes of it is listed before; it is made all or not at all, in one step.
class FArchivePatterns final : public PatternDialog {
    Q_OBJECT
public:
    /// `work` and `texts` are borrowed and outlive the dialog. `name`: of the archive.
    FArchivePatterns(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                     std::int32_t archive, const QString& name, patterns::Original original,
                     QWidget* owner);

    /// IDs of the archives that have been made, when it has been accepted.
    [[nodiscard]] const std::vector<std::int32_t>& Made() const noexcept { return made_; }

private:
    void Build(const QString& name);
    void Expand();
    void ShowStateNow();
    [[nodiscard]] QString StateText() const;
    [[nodiscard]] QString ProblemText(std::size_t copy) const;
    void Make();

    std::int32_t archive_;
    patterns::Original original_;
    patterns::ArchivePlan plan_;
    std::vector<std::int32_t> made_;

    QLineEdit* txtName_ = nullptr;
    QLineEdit* txtFind_ = nullptr;
    QLineEdit* txtBy_ = nullptr;
    QListWidget* lstArchives_ = nullptr;
};
