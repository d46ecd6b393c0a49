#pragma once

#include <functional>
#include <QDialog>
#include <QString>

#include "templates/TemplateFile.h"
#include "texts/MResources.h"

class QLabel;
class QListWidget;
class QPushButton;

/// The templates of archives or of trends: one is chosen for new ones, or none; they are renamed
/// and deleted, which is stored at once.
class FTemplates final : public QDialog {
    Q_OBJECT
public:
    /// `texts` and `file` are borrowed. `chosen`: the name of the one in use; empty: none.
    /// `showHelp` is asked for by F1.
    FTemplates(const MResources::TextTable& texts, templates::TemplateFile& file,
               templates::Kind kind, const QString& chosen, std::function<void()> showHelp,
               QWidget* owner);

    /// The name of the chosen one, also when the dialog has been given up, for it may bear another
    /// name by now; empty: none.
    [[nodiscard]] const QString& Chosen() const { return chosen_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build();
    void Fill(const QString& current);
    void ShowState();
    void Use();
    void Rename();
    void Remove();
    /// True when there is nothing to tell.
    bool Tell(const QString& failure);
    [[nodiscard]] QString Current() const;  // empty: none

    const MResources::TextTable& texts_;
    templates::TemplateFile& file_;
    templates::Kind kind_;
    QString chosen_;
    std::function<void()> showHelp_;
    QListWidget* lstTemplates_ = nullptr;
    QPushButton* cmdRename_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
};
