#include "guard/RowProgress.h"

#include <QProgressDialog>

#include "messages/MessageBox.h"
#include "texts/MResourceTable.h"

namespace {

constexpr int kShowAfter = 500;  // milliseconds

}  // namespace

RowProgress::RowProgress(const MResources::TextTable& texts, int text, QWidget* owner)
    : texts_(texts), text_(text), owner_(owner) {
    messages::SetScreenPointer(messages::Pointer::Hourglass);
}

RowProgress::~RowProgress() {
    delete dialog_;
    messages::SetScreenPointer(messages::Pointer::Default);
}

projectdb::Progress RowProgress::Function() {
    return [this](int done, int total) { return Step(done, total); };
}

bool RowProgress::Step(int done, int total) {
    if (dialog_ == nullptr) {
        dialog_ = new QProgressDialog(
            texts_.GetText(text_), texts_.GetText(MResourceTable::kTextCancel), 0, total, owner_);
        dialog_->setObjectName(QStringLiteral("dlgProgress"));
        if (owner_ != nullptr) dialog_->setWindowTitle(owner_->windowTitle());
        dialog_->setWindowModality(Qt::WindowModal);
        dialog_->setMinimumDuration(kShowAfter);
        dialog_->setAutoClose(false);
        dialog_->setAutoReset(false);
    }
    dialog_->setMaximum(total);
    // Handles events while the dialog is shown, so that Cancel can be pressed; nothing else can,
    // for the dialog is modal.
    dialog_->setValue(done);
    return !dialog_->wasCanceled();
}
