#pragma once

#include <memory>
#include <QHash>
#include <QLineEdit>
#include <QObject>

class CaptionHeader;
class GridView;

/// The fields under the headings of a grid's columns; their texts are the split's.
class FilterRow final : public QObject {
    Q_OBJECT
public:
    /// Both are borrowed and outlive the row. `header`: of the grid, or of its strip of columns
    /// that stay in view, which has fields of its own.
    FilterRow(CaptionHeader& header, GridView& grid);
    ~FilterRow() override;

    [[nodiscard]] int Height() const;
    /// Puts the fields under their columns, and makes those that are missing.
    void Place();
    /// Shows the split's texts.
    void Update();
    bool Focus(int column);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* FieldOf(int column);

    CaptionHeader& header_;
    GridView& grid_;
    QHash<int, QLineEdit*> fields_;  // by column
    bool placing_ = false;
};
