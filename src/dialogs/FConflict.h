#pragma once

#include <optional>
#include <QDialog>
#include <QList>
#include <QString>

class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace MResources {
class TextTable;
}

/// Where two have changed the same: what it was, what the other has made of it, what the user
/// wants, and the choice between the two for each line. Nothing is chosen for the user.
class FConflict final : public QDialog {
    Q_OBJECT
public:
    struct Row {
        QString what;  // "Trend Druck: Einheit"
        QString was;
        QString theirs;
        QString mine;
    };
    enum class Side { Theirs, Mine };

    FConflict(const MResources::TextTable& texts, const QList<Row>& rows, QWidget* owner);

    /// A side for each line, in their order; nothing when the user gives up.
    [[nodiscard]] std::optional<QList<Side>> Ask();

private slots:
    void tblConflicts_ItemChanged(QTableWidgetItem* item);

private:
    void Fill(const QList<Row>& rows);
    void ChooseAll(Side side);
    void UpdateOk();
    [[nodiscard]] std::optional<Side> Chosen(int row) const;

    const MResources::TextTable& texts_;
    QTableWidget* tblConflicts_;
    QPushButton* cmdOk_;
};
