#include "studio/VariableBrowser.h"

#include <QFileInfo>

#include "studio/VariableCatalog.h"
#include "studio/VariableDialog.h"

namespace studio {

VariableBrowser::VariableBrowser(const StudioTexts& texts) : texts_(texts) {}
VariableBrowser::~VariableBrowser() = default;

void VariableBrowser::SetProject(const QString& nativePath) {
    project_ = nativePath;
    catalog_.reset();
}

std::optional<QStringList> VariableBrowser::Choose(QWidget* owner,
                                                   const KV4AddIn::VariableChoice& choice) {
    if (project_.isEmpty()) return std::nullopt;
    Prepare();
    // Belongs to the call: nothing that happens while the dialog is open takes it away.
    std::unique_ptr<VariableCatalog> catalog = std::move(catalog_);
    const QString project = project_;
    std::optional<QStringList> chosen;
    {
        VariableDialog dialog(*catalog, texts_, choice.current, owner);
        if (choice.several) dialog.OfferSeveral();
        if (choice.showUses) dialog.OfferUses(choice.showUses);
        if (dialog.exec() == QDialog::Accepted) chosen = dialog.AllChosen();
    }
    if (catalog->IsComplete() && catalog->Failure().isEmpty() && project == project_) {
        catalog_ = std::move(catalog);
    }
    return chosen;
}

void VariableBrowser::Prepare() {
    const QDateTime changed = QFileInfo(project_).lastModified();
    if (catalog_ != nullptr && changed == readAt_) return;
    catalog_ = std::make_unique<VariableCatalog>();
    readAt_ = changed;
    catalog_->Open(project_);
}

}  // namespace studio
