#pragma once

#include <cstdint>
#include <QAbstractTableModel>
#include <QString>
#include <vector>

#include "replace/Hits.h"
#include "texts/MResources.h"

namespace replace {

/// The hits as a table: place, what stands there, what is to stand there, and why not. Those that a
/// text narrows it to are shown.
class HitModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { kArchive, kTrend, kField, kOld, kNew, kNote, kColumnCount };
    /// Of kOld and kNew: the parts that are found or new, a std::vector<Part>.
    static constexpr int kParts = Qt::UserRole + 1;

    /// Both are borrowed.
    HitModel(Hits& hits, const MResources::TextTable& texts, QObject* parent);

    /// The hits are others: all of them are read anew.
    void Reset();
    /// Further hits have been found.
    void TakeNew();
    /// Values, ticks and notes may be others.
    void ShowStates();
    /// Shows only hits with a text in place or values; what is not shown is not written.
    void Narrow(const QString& text);

    [[nodiscard]] std::size_t HitOf(const QModelIndex& index) const {
        return shown_[static_cast<std::size_t>(index.row())];
    }
    /// Ticks hits that are shown.
    void SetTicked(const QModelIndexList& rows, bool ticked);
    void SetAllTicked(bool ticked);
    /// Of those that are shown: all, none, or some.
    [[nodiscard]] Qt::CheckState AllTicked() const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

signals:
    void Ticked();

private:
    [[nodiscard]] QString TextOf(std::size_t hit, int column) const;
    [[nodiscard]] QString FieldName(const ProjectFields::Column& column) const;
    [[nodiscard]] QString Note(std::size_t hit) const;
    [[nodiscard]] bool CanBeTicked(std::size_t hit) const;
    [[nodiscard]] bool Suits(std::size_t hit) const;

    Hits& hits_;
    const MResources::TextTable& texts_;
    QString narrowing_;
    std::size_t taken_ = 0;  // hits that have been looked at
    std::vector<std::uint32_t> shown_;
};

}  // namespace replace

Q_DECLARE_METATYPE(std::vector<replace::Part>)
