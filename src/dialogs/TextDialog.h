#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace MResources {
class TextTable;
}

/// Edits the text of one field where there is room for it: as wide as the screen allows, in the
/// font of the field, with the number of characters that are left.
class TextDialog final : public QDialog {
    Q_OBJECT

public:
    /// Takes text, font, longest length and label from `field`, which stays as it is.
    TextDialog(const MResources::TextTable& texts, const QLineEdit& field, QWidget* owner);

    [[nodiscard]] QString Text() const;

private slots:
    void txtText_Change();

private:
    const MResources::TextTable& texts_;
    QLineEdit* txtText_;
    QLabel* lblCount_;
};
