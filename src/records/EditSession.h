#pragma once

#include <functional>
#include <optional>
#include <QLineEdit>
#include <QtGlobal>
#include <utility>

#include "ado/Recordset.h"
#include "dialogs/PropertyDialog.h"
#include "project/FieldText.h"
#include "projectdb/Failure.h"

/// What the edit sessions of archives and trends have in common.
namespace EditSession {

/// Lets the control take what the column does: no longer text, numbers of its range. What a column
/// holds that no text can be typed for is only shown.
inline void BindToField(PropertyDialog& dialog, QLineEdit& text, const ado::Field& field) {
    dialog.SetColumn(text, QString::fromStdString(field.name));
    if (field.type == ado::DataType::VarWChar) text.setMaxLength(field.definedSize);
    if (const auto range = project::RangeOf(field.type)) dialog.ExpectNumber(text, *range);
    if (!project::IsText(field.type) && !project::IsNumber(field.type)) dialog.SetReadOnly(text);
}

/// Runs a step of the session. Its failure has a text of its own for the user; the cause goes to
/// the log too. Empty when nothing was thrown.
template <typename Step>
std::optional<projectdb::Failure> Try(const char* procedure, Step&& step) noexcept {
    try {
        std::forward<Step>(step)();
        return std::nullopt;
    } catch (...) {
        projectdb::Failure failure = projectdb::Failure::Current();
        qWarning("%s: %s", procedure, qUtf8Printable(failure.Details()));
        return failure;
    }
}

/// Tells the user over the open dialog that its record could not be stored, and why. `text`: number
/// of the first sentence. `gone`: the row could not be read again either.
void TellNotStored(PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, bool gone);
/// Tells the user why the dialog does not open.
void TellNotLoaded(const PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, QWidget* owner);

}  // namespace EditSession
