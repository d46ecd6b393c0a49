#pragma once

#include <functional>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QString>
#include <QTimer>

#include "projectdb/IProjectWork.h"
#include "texts/MResources.h"

class QLayout;

/// What the dialogs of patterns share: what is typed is expanded after a pause; a line below says
/// how things stand, beside the button that makes it.
class PatternDialog : public QDialog {
    Q_OBJECT
protected:
    /// Both are borrowed and outlive the dialog.
    PatternDialog(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                  const QString& name, QWidget* owner);

    /// The state, cmdMake, which runs `make`, and cmdCancel.
    [[nodiscard]] QLayout* BuildButtons(std::function<void()> make);
    /// Runs `expand` when the user has paused in typing.
    void ExpandAfterTyping(std::function<void()> expand);
    /// Something has been typed.
    void Typed() { typing_.start(); }
    /// `expand` is about to run anyhow.
    void StopWaiting() { typing_.stop(); }
    [[nodiscard]] bool IsWaiting() const { return typing_.isActive(); }
    /// What stands beside the button, and how many rows it makes: none, as long as something stands
    /// against them.
    void ShowState(const QString& state, std::size_t count, int makeOne, int makeMany);

    void keyPressEvent(QKeyEvent* event) override;

    [[nodiscard]] projectdb::IProjectWork& Work() const { return work_; }
    [[nodiscard]] const MResources::TextTable& Texts() const { return texts_; }

private:
    projectdb::IProjectWork& work_;
    const MResources::TextTable& texts_;
    QTimer typing_;
    QLabel* lblState_ = nullptr;
    QPushButton* cmdMake_ = nullptr;
};
