#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <QLineEdit>
#include <QtGlobal>
#include <utility>
#include <vector>

#include "ado/Recordset.h"
#include "dialogs/DialogServices.h"
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

/// The rows that a dialog edits, as it has shown them.
class ShownRows {
public:
    /// Those that stand on a row. They are borrowed.
    explicit ShownRows(std::initializer_list<ado::Recordset*> rows);

    enum class Joined { Yes, GivenUp, Open };
    /// Another program has changed a row since, and all have been read again. `assign` gives them
    /// what the user has changed; that stays, next to what the other has changed alone. Where both
    /// have changed a field the user settles it: when he gives up, or nobody can be asked (Open),
    /// nothing is assigned any more.
    [[nodiscard]] Joined Join(const std::function<void()>& assign, const DialogServices& services,
                              QWidget* owner);

private:
    struct Row {
        ado::Recordset* rows;
        std::vector<ado::Value> values;
    };
    [[nodiscard]] static std::vector<ado::Value> ValuesOf(const ado::Recordset& rows);

    std::vector<Row> shown_;
};

/// The OK of a dialog over rows that other programs may change meanwhile.
class Storing {
public:
    struct Steps {
        std::function<void()> assign;     // what the user has changed, to the rows
        std::function<void()> save;       // what has been assigned, to the file
        std::function<bool()> readAgain;  // drops what has been assigned; false: a row has gone
        /// Tells the user why nothing has been stored.
        std::function<void(const projectdb::Failure& failure, bool gone)> tell;
    };
    Storing(ShownRows shown, Steps steps, const DialogServices& services)
        : shown_(std::move(shown)), steps_(std::move(steps)), services_(services) {}

    /// True when it is stored; else the dialog stays open with what has been typed.
    [[nodiscard]] bool Run(const char* procedure, QWidget* owner);

private:
    ShownRows shown_;
    Steps steps_;
    const DialogServices& services_;
    bool unsettled_ = false;  // the user has seen what differs and decided nothing
};

/// Tells the user over the open dialog that its record could not be stored, and why. `text`: number
/// of the first sentence. `gone`: the row could not be read again either.
void TellNotStored(PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, bool gone);
/// Tells the user why the dialog does not open.
void TellNotLoaded(const PropertyDialog& dialog, const MResources::TextTable& texts, int text,
                   const projectdb::Failure& failure, QWidget* owner);

}  // namespace EditSession
