#include "records/EditSession.h"

#include "ado/AdoError.h"
#include "platform/MessageBox.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace EditSession {

void TellNotStored(PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, bool gone) {
    QString cause = failure.Text();
    if (failure.number == ado::ErrorNumber::kRowNotLocated) {
        cause = texts.GetText(gone ? MResourceTable::kTextRecordGone
                                   : MResourceTable::kTextRecordChanged);
    }
    platform::ShowMessage(texts.GetText(text) + QStringLiteral("\n\n") + cause,
                          platform::MessageButtons::Ok, dialog.windowTitle(), &dialog);
}

}  // namespace EditSession
