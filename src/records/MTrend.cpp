#include "records/MTrend.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "dialogs/FTrend.h"
#include "dialogs/ManyRecords.h"
#include "messages/MessageBox.h"
#include "project/FieldText.h"
#include "project/Rows.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"
#include "texts/Language.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace MTrend {
namespace {

using EditSession::BindToField;
using EditSession::TellNotLoaded;
using EditSession::TellNotStored;
using EditSession::Try;
using project::kParamNames;
using project::LanguageColumn;

constexpr std::string_view kHysteresis = "Hysteresis";
constexpr std::string_view kHysteresisMode = "HysteresisMode";

/// A value as the user writes it.
QString TextOf(const ado::Value& value) {
    return projectdb::ToQString(project::ValueText(value, platform::DecimalSeparator().unicode()));
}

void Load(const ado::Recordset& trend, FTrend& dialog, platform::Lcid language) {
    const std::string languageColumn = LanguageColumn(language);
    QString hysteresis;
    std::int32_t mode = 0;
    dialog.SetDisplayTextAvailable(false);
    const auto show = [&](QLineEdit& text, std::size_t column) {
        BindToField(dialog, text, trend.Fields()[column]);
        text.setText(TextOf(trend.Get(column)));
    };
    for (std::size_t i = 0; i < trend.Fields().size(); ++i) {
        const std::string_view name = trend.Fields()[i].name;
        QWidget* field = dialog.FieldOf(name);
        if (name == languageColumn) {
            dialog.SetDisplayTextAvailable(true);
            show(*dialog.txtTextID, i);
        } else if (name == kParamNames) {
            const ado::Value names = trend.Get(i);
            dialog.SetIndexTextParamNames(
                ado::IsNull(names) ? std::nullopt
                                   : std::optional(projectdb::ToQString(ado::ToText(names))));
        } else if (name == kHysteresis) {
            BindToField(dialog, *dialog.txtHysteresis, trend.Fields()[i]);
            hysteresis = TextOf(trend.Get(i));
        } else if (name == kHysteresisMode) {
            mode = ado::ToLong(trend.Get(i));
        } else if (auto* text = qobject_cast<QLineEdit*>(field)) {
            show(*text, i);
        } else if (auto* list = qobject_cast<QComboBox*>(field)) {
            dialog.ShowCode(*list, projectdb::NumberOf(trend, name),
                            project::FindTrendColumn(name)->codes);
        } else if (auto* color = qobject_cast<KVColorSelect*>(field)) {
            const ado::Value value = trend.Get(i);
            ado::IsNull(value) ? color->ClearColor() : color->SetColor(ado::ToLong(value));
        }
    }
    dialog.SetOtherTexts(platform::LanguageName(language, texts::InterfaceLanguage()),
                         MDialogs::OtherTexts(trend, language));
    dialog.cmbHysteresisMode->setCurrentIndex(project::HysteresisMode(!hysteresis.isEmpty(), mode));
    dialog.txtHysteresis->setText(hysteresis);
    dialog.SetOpenedName(dialog.txtName->text());
}

/// Amount and mode go together: what has been chosen for one says what the other means.
void AddHysteresis(std::span<const ado::Field> fields, const FTrend& dialog, Values& values) {
    const bool amountTouched = dialog.Touched(*dialog.txtHysteresis);
    if (!amountTouched && !dialog.Touched(*dialog.cmbHysteresisMode)) return;
    const std::int32_t mode = dialog.cmbHysteresisMode->currentIndex();
    const bool none = mode == dialog.cmbHysteresisMode->count() - 1;
    const QString amount = none ? QString() : dialog.txtHysteresis->text();
    for (const ado::Field& field : fields) {
        if (field.name == kHysteresisMode && mode >= 0) values.emplace_back(field.name, mode);
        if (field.name != kHysteresis || !(none || amountTouched)) continue;
        const bool noNumber = amount.isEmpty() && project::IsNumber(field.type);
        values.emplace_back(field.name, noNumber ? ado::Value(ado::Null())
                                                 : ado::Value(projectdb::ToUtf16(amount)));
    }
}

/// What the user has changed, by field. What he has left alone is not among it, so that it stays as
/// it is to the last digit, and what another program has changed meanwhile stays that program's.
Values ValuesOf(std::span<const ado::Field> fields, const FTrend& dialog, platform::Lcid language) {
    const std::string languageColumn = LanguageColumn(language);
    Values values;
    for (const ado::Field& known : fields) {
        if (known.name == kHysteresis || known.name == kHysteresisMode) continue;
        const QWidget* field =
            known.name == languageColumn ? dialog.txtTextID : dialog.FieldOf(known.name);
        if (field == nullptr || !dialog.Touched(*field)) continue;
        if (const auto* text = qobject_cast<const QLineEdit*>(field)) {
            const auto read = project::ReadDialogText(projectdb::ToUtf16(text->text()), known);
            if (read.problem != project::Problem::NotEditable) {
                values.emplace_back(known.name, read.value);
            }
        } else if (const auto* list = qobject_cast<const QComboBox*>(field)) {
            if (list->currentIndex() < 0) continue;
            values.emplace_back(known.name, static_cast<std::int32_t>(list->currentData().toInt()));
        } else if (const auto* color = qobject_cast<const KVColorSelect*>(field)) {
            if (!color->HasColor()) continue;
            values.emplace_back(known.name, static_cast<std::int32_t>(color->Color()));
        }
    }
    AddHysteresis(fields, dialog, values);
    return values;
}

void Assign(ado::Recordset& trend, const FTrend& dialog, platform::Lcid language) {
    for (const auto& [field, value] : ValuesOf(trend.Fields(), dialog, language)) {
        trend.Set(field, value);
    }
    MDialogs::AssignTexts(trend, dialog.OtherTexts());
    if (project::HasField(trend, kParamNames)) {
        const std::optional<QString>& names = dialog.IndexTextParamNames();
        const ado::Value kept =
            names ? ado::Value(projectdb::ToUtf16(*names)) : ado::Value(ado::Null());
        if (trend.Get(kParamNames) != kept) trend.Set(kParamNames, kept);
    }
    if (dialog.Touched(*dialog.txtName)) {
        project::RenameTrendText(trend, projectdb::ToUtf16(dialog.OpenedName()),
                                 projectdb::ToUtf16(dialog.txtName->text()));
    }
}

/// The dialog as that of several trends, of which it has been filled with one.
void ShowMany(std::span<const ado::Field> fields, const Many& many, FTrend& dialog,
              platform::Lcid language) {
    ManyRecords& shown =
        dialog.ShowMany(static_cast<int>(many.count), MResourceTable::kTextChangeField,
                        MResourceTable::kTextChangeFields);
    const std::string languageColumn = LanguageColumn(language);
    for (const ado::Field& field : fields) {
        QWidget* control =
            field.name == languageColumn ? dialog.txtTextID : dialog.FieldOf(field.name);
        if (control == nullptr) continue;
        // A mode means nothing without its amount.
        const bool isMode = field.name == kHysteresisMode;
        shown.Add(*control, many.differs(field.name) || (isMode && many.differs(kHysteresis)));
    }
    dialog.ShowCount(many.count);
    dialog.SetCurveColours({many.colours.begin(), many.colours.end()});
}

void Store(ado::Recordset& trend, const FTrend& dialog, platform::Lcid language) {
    Assign(trend, dialog, language);
    trend.Update();
}

}  // namespace

bool TrendToDialog(const ado::Recordset& trend, FTrend& dialog, platform::Lcid language) {
    return !Try("TrendToDialog", [&] { Load(trend, dialog, language); });
}

bool DialogToTrend(ado::Recordset& trend, const FTrend& dialog, platform::Lcid language) {
    return !Try("DialogToTrend", [&] { Store(trend, dialog, language); });
}

bool EditTrends(const ado::Recordset& trend, const Many& many, platform::Lcid language,
                const DialogServices& services, QWidget* owner) {
    FTrend dialog(services, projectdb::kTrendNames, owner);
    const auto unread = Try("TrendToDialog", [&] { Load(trend, dialog, language); });
    if (unread) {
        TellNotLoaded(dialog, services.texts, MResourceTable::kTextTrendInitFailed, *unread, owner);
        return false;
    }
    dialog.SetOtherTexts({}, {});  // they are the first trend's
    ShowMany(trend.Fields(), many, dialog, language);
    dialog.SetStore([&] {
        const Values values = ValuesOf(trend.Fields(), dialog, language);
        return values.empty() || many.store(values);
    });
    dialog.exec();
    return !dialog.Cancelled();
}

bool EditTrend(ado::Recordset& trend, platform::Lcid language, const DialogServices& services,
               QWidget* owner) {
    FTrend dialog(services, projectdb::kTrendNames, owner);
    const auto unread = Try("TrendToDialog", [&] { Load(trend, dialog, language); });
    if (unread) {
        TellNotLoaded(dialog, services.texts, MResourceTable::kTextTrendInitFailed, *unread, owner);
        return false;
    }
    EditSession::Storing storing(EditSession::ShownRows({&trend}),
                                 {[&] { Assign(trend, dialog, language); }, [&] { trend.Update(); },
                                  [&] {
                                      return !Try("Resync", [&] {
                                          trend.CancelUpdate();
                                          trend.Resync();
                                      });
                                  },
                                  [&](const projectdb::Failure& failure, bool gone) {
                                      TellNotStored(dialog, services.texts,
                                                    MResourceTable::kTextTrendWriteBackFailed,
                                                    failure, gone);
                                  }},
                                 services);
    dialog.SetStore([&] { return storing.Run("DialogToTrend", &dialog); });
    dialog.exec();
    return !dialog.Cancelled();
}

}  // namespace MTrend
