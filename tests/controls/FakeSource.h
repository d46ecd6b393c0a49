#pragma once

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <vector>

#include "controls/GridSource.h"

/// Rows in memory, fetched in portions as a recordset's are.
class FakeSource final : public GridSource {
public:
    struct Field {
        QString name;
        GridKind kind = GridKind::Text;
        bool editable = true;
    };
    struct Row {
        GridRowId id = 0;
        std::vector<QVariant> values;
    };
    struct Commit {
        GridRowId row;
        int column;
        QVariant value;
    };

    explicit FakeSource(std::vector<Field> fields, int portion = 200)
        : fields_(std::move(fields)), portion_(portion) {}

    /// The rows of another archive, or the same ones read anew.
    void Load(std::vector<Row> rows, const QVariant& key) {
        beginResetModel();
        stored_ = std::move(rows);
        key_ = key;
        fetched_ = 0;
        places_.clear();
        endResetModel();
    }
    /// As before the trends of an archive are read anew.
    void Release() {
        beginResetModel();
        kept_ = std::move(stored_);
        stored_.clear();
        fetched_ = 0;
        places_.clear();
        endResetModel();
    }
    [[nodiscard]] std::vector<Row> Kept() { return kept_; }
    [[nodiscard]] std::vector<Row> Rows() const { return stored_; }

    void Append(Row row) {
        while (canFetchMore({})) fetchMore({});
        beginInsertRows({}, fetched_, fetched_);
        places_[row.id] = fetched_;
        stored_.push_back(std::move(row));
        ++fetched_;
        endInsertRows();
    }
    void Insert(int row, Row added) {
        beginInsertRows({}, row, row);
        stored_.insert(stored_.begin() + row, std::move(added));
        ++fetched_;
        for (int i = 0; i < fetched_; ++i) places_[At(i).id] = i;
        endInsertRows();
    }
    void Remove(GridRowId id) {
        const int row = RowOf(id);
        beginRemoveRows({}, row, row);
        stored_.erase(stored_.begin() + row);
        --fetched_;
        places_.clear();
        for (int i = 0; i < fetched_; ++i) places_[At(i).id] = i;
        endRemoveRows();
    }
    [[nodiscard]] QVariant Value(GridRowId id, int column) const {
        for (const Row& row : stored_) {
            if (row.id == id) return row.values.at(static_cast<std::size_t>(column));
        }
        return QStringLiteral("no such row");
    }

    [[nodiscard]] GridRowId IdAt(int row) const override {
        ++asked;
        return At(row).id;
    }
    mutable int asked = 0;  // for the ID of a row
    [[nodiscard]] int RowOf(GridRowId id) const override {
        const auto found = places_.find(id);
        return found == places_.end() ? -1 : found->second;
    }
    [[nodiscard]] QVariant ContentKey() const override { return key_; }
    [[nodiscard]] std::optional<QVariant> ReadCell(int column, const QString& text) const override {
        if (text.isEmpty()) return QVariant();
        bool ok = true;
        QVariant value = text;
        switch (fields_.at(static_cast<std::size_t>(column)).kind) {
            case GridKind::Integer:
                value = text.toLongLong(&ok);
                break;
            case GridKind::Number:
                value = NumberIn(text, ok);
                break;
            case GridKind::Colour:
                value = qlonglong{Turned(text.mid(1).toUInt(&ok, 16))};
                ok = ok && text.size() == 7;
                break;
            case GridKind::Text:
                break;
        }
        return ok ? std::optional(value) : std::nullopt;
    }
    GridCommit CommitCell(GridRowId id, int column, const QVariant& value) override {
        commits.push_back({id, column, value});
        if (answer) {
            GridCommit result = answer(commits.back());
            if (result.outcome != GridCommit::Outcome::Stored) return result;
        }
        const int row = RowOf(id);
        stored_[static_cast<std::size_t>(row)].values[static_cast<std::size_t>(column)] = value;
        emit dataChanged(index(row, column), index(row, column));
        return GridCommit::Stored();
    }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : fetched_;
    }
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(fields_.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        const QVariant& value = At(index.row()).values.at(static_cast<std::size_t>(index.column()));
        if (role == GridRole::kStored) return value;
        if (role == GridRole::kNumber) {
            bool ok = false;
            const double number = NumberIn(value.toString(), ok);
            return ok ? QVariant(number) : QVariant();
        }
        if (role != Qt::DisplayRole) return {};
        const Field& field = fields_.at(static_cast<std::size_t>(index.column()));
        return field.kind == GridKind::Colour && value.isValid() ? ColourText(value.toUInt())
                                                                 : value.toString();
    }
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation, int role) const override {
        const Field& field = fields_.at(static_cast<std::size_t>(section));
        if (role == Qt::DisplayRole || role == GridRole::kField) return field.name;
        return role == GridRole::kKind ? QVariant(static_cast<int>(field.kind)) : QVariant();
    }
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override {
        const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        const bool editable = fields_.at(static_cast<std::size_t>(index.column())).editable;
        return editable ? plain | Qt::ItemIsEditable : plain;
    }
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override {
        if (promises > 0) --promises;
        return !parent.isValid() && (promises > 0 || fetched_ < static_cast<int>(stored_.size()));
    }
    void fetchMore(const QModelIndex&) override {
        const int last = std::min(fetched_ + portion_, static_cast<int>(stored_.size()));
        if (last == fetched_) return;
        beginInsertRows({}, fetched_, last - 1);
        for (; fetched_ < last; ++fetched_) places_[At(fetched_).id] = fetched_;
        endInsertRows();
    }

    std::vector<Commit> commits;
    std::function<GridCommit(const Commit&)> answer;  // none: everything is stored
    mutable int promises = 0;  // so often there are said to be more rows than there are

private:
    [[nodiscard]] static double NumberIn(QString text, bool& ok) {
        return text.replace(u',', u'.').toDouble(&ok);
    }
    [[nodiscard]] static uint Turned(uint bits) {
        return (bits & 0xFF) << 16 | (bits & 0xFF00) | bits >> 16;
    }
    [[nodiscard]] static QString ColourText(uint stored) {
        return u'#' + QString::number(Turned(stored), 16).toUpper().rightJustified(6, u'0');
    }
    [[nodiscard]] const Row& At(int row) const { return stored_.at(static_cast<std::size_t>(row)); }

    std::vector<Field> fields_;
    std::vector<Row> stored_;
    std::vector<Row> kept_;
    std::unordered_map<GridRowId, int> places_;
    QVariant key_;
    int fetched_ = 0;
    int portion_;
};
