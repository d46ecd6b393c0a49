#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class QGridLayout;
class QLabel;
class QLineEdit;

namespace MResources {
class TextTable;
}

/// A record's text in a language that is not the one shown.
struct LanguageText {
    QString column;    // where it is stored
    QString language;  // its name
    QString text;
    QString loaded;     // as it was
    int longest = 255;  // characters

    [[nodiscard]] bool IsTouched() const { return text != loaded; }
};

/// Edits the text of one field where there is room for it: as wide as the screen allows, in the
/// font of the field, with the number of characters that are left; and below it the same text in
/// the project's other languages, of which those that are missing say so.
class TextDialog final : public QDialog {
    Q_OBJECT

public:
    /// Takes text, font, longest length and label from `field`, which stays as it is. `language`
    /// names that of the field; empty: it has none.
    TextDialog(const MResources::TextTable& texts, const QLineEdit& field, const QString& language,
               const QList<LanguageText>& others, QWidget* owner);
    ~TextDialog() override;

    [[nodiscard]] QString Text() const;
    /// With what has been typed.
    [[nodiscard]] QList<LanguageText> Others() const;

private:
    QLineEdit* AddField(QGridLayout& layout, const QString& name, const QString& language,
                        const QString& text, int longest);
    /// How much of the field that has the keyboard is used.
    void ShowCount();

    const MResources::TextTable& texts_;
    QString caption_;
    QList<LanguageText> others_;
    QLineEdit* txtText_ = nullptr;
    QList<QLineEdit*> txtOthers_;
    QLabel* lblCount_;
};
