#include "records/EditSession.h"

#include "ado/AdoError.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace EditSession {
namespace {

/// The failure with the numbered sentence in front of its cause.
messages::Message Message(const PropertyDialog& dialog, const projectdb::Failure& failure,
                          const QString& sentence, const QString& cause) {
    messages::Message message = guard::ToMessage(failure, dialog.objectName());
    message.text = sentence + QStringLiteral("\n\n") + cause;
    message.title = dialog.windowTitle();
    return message;
}

}  // namespace

void TellNotStored(PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, bool gone) {
    reasons::Reason reason = failure.reason;
    // The user knows the field, not the column.
    const QString label = dialog.LabelOf(QString::fromStdString(reason.name));
    if (!label.isEmpty()) reason.name = label.toStdString();
    QString cause = texts::ReasonText(reason);
    if (failure.number == ado::ErrorNumber::kRowNotLocated) {
        cause = texts.GetText(gone ? MResourceTable::kTextRecordGone
                                   : MResourceTable::kTextRecordChanged);
    }
    messages::ShowMessage(Message(dialog, failure, texts.GetText(text), cause), &dialog);
}

void TellNotLoaded(const PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, QWidget* owner) {
    messages::ShowMessage(Message(dialog, failure, texts.GetText(text), failure.Text()), owner);
}

}  // namespace EditSession
