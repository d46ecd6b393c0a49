#pragma once

#include <QLineEdit>
#include <QtGlobal>
#include <string>
#include <utility>

#include "ado/Recordset.h"
#include "platform/Locale.h"
#include "projectdb/Guard.h"

/// What the edit sessions of archives and trends have in common.
namespace EditSession {

/// The column of the index texts in a language: "L1031".
[[nodiscard]] inline std::string LanguageColumn(platform::Lcid language) {
    return "L" + std::to_string(language);
}

/// Lets no longer text be typed than the column takes.
inline void LimitLength(QLineEdit& text, const ado::Field& field) {
    if (field.type == ado::DataType::VarWChar) text.setMaxLength(field.definedSize);
}

/// Runs a step of the session. Its failure has a text of its own for the user; the cause goes to
/// the log. False when something was thrown.
template <typename Step>
bool Succeeds(const char* procedure, Step&& step) noexcept {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (...) {
        qWarning("%s: %s", procedure, qUtf8Printable(projectdb::Failure::Current().Text()));
        return false;
    }
}

}  // namespace EditSession
