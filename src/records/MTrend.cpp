#include "records/MTrend.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "dialogs/FTrend.h"
#include "messages/MessageBox.h"
#include "project/Rows.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"
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

template <typename Control>
struct Column {
    std::string_view name;
    Control* Ui_FTrend::*control;
};

constexpr std::array<Column<QLineEdit>, 18> kTextColumns = {{
    {"Name", &Ui_FTrend::txtName},
    {"TrendVar", &Ui_FTrend::txtTrendVar},
    {"Maximum", &Ui_FTrend::txtMaximum},
    {"Minimum", &Ui_FTrend::txtMinimum},
    {"SurrogateMax", &Ui_FTrend::txtSurrogateMax},
    {"SurrogateMin", &Ui_FTrend::txtSurrogateMin},
    {"ErrorValue", &Ui_FTrend::txtErrorValue},
    {"Factor", &Ui_FTrend::txtFactor},
    {"Offset", &Ui_FTrend::txtOffset},
    {"FilterDepth", &Ui_FTrend::txtFilterDepth},
    {"Unit", &Ui_FTrend::txtUnit},
    {"VMax", &Ui_FTrend::txtVMax},
    {"VMin", &Ui_FTrend::txtVMin},
    {"VUpper", &Ui_FTrend::txtVUpper},
    {"VLower", &Ui_FTrend::txtVLower},
    {"VLineWidth", &Ui_FTrend::txtVLineWidth},
    {"VMaxSamples", &Ui_FTrend::txtVMaxSamples},
    {"Comment", &Ui_FTrend::txtComment},
}};
constexpr std::array<Column<QComboBox>, 4> kCodeColumns = {{
    {"Filter", &Ui_FTrend::cmbFilter},
    {"VLineStyle", &Ui_FTrend::cmbVLineStyle},
    {"VConfig", &Ui_FTrend::cmbVConfig},
    {"VDrawMode", &Ui_FTrend::cmbVDrawMode},
}};
constexpr std::array<Column<KVColorSelect>, 3> kColorColumns = {{
    {"VLineColor", &Ui_FTrend::clrVLineColor},
    {"VUpperColor", &Ui_FTrend::clrVUpperColor},
    {"VLowerColor", &Ui_FTrend::clrVLowerColor},
}};

/// The control of a column, null when it belongs to another table.
template <typename Control, std::size_t N>
Control* Find(const std::array<Column<Control>, N>& columns, std::string_view name,
              const FTrend& dialog) {
    const auto found =
        std::find_if(columns.begin(), columns.end(),
                     [&](const Column<Control>& column) { return column.name == name; });
    return found == columns.end() ? nullptr : dialog.*found->control;
}

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
        } else if (QLineEdit* text = Find(kTextColumns, name, dialog)) {
            show(*text, i);
        } else if (QComboBox* list = Find(kCodeColumns, name, dialog)) {
            dialog.ShowCode(*list, projectdb::NumberOf(trend, name),
                            project::FindTrendColumn(name)->codes);
        } else if (KVColorSelect* color = Find(kColorColumns, name, dialog)) {
            const ado::Value value = trend.Get(i);
            ado::IsNull(value) ? color->ClearColor() : color->SetColor(ado::ToLong(value));
        }
    }
    dialog.cmbHysteresisMode->setCurrentIndex(project::HysteresisMode(!hysteresis.isEmpty(), mode));
    dialog.txtHysteresis->setText(hysteresis);
    dialog.SetOpenedName(dialog.txtName->text());
}

/// Amount and mode go together: what has been chosen for one says what the other means.
void StoreHysteresis(ado::Recordset& trend, const FTrend& dialog) {
    if (!dialog.Touched(*dialog.txtHysteresis) && !dialog.Touched(*dialog.cmbHysteresisMode)) {
        return;
    }
    const std::int32_t mode = dialog.cmbHysteresisMode->currentIndex();
    const bool none = mode == dialog.cmbHysteresisMode->count() - 1;
    const QString amount = none ? QString() : dialog.txtHysteresis->text();
    for (std::size_t i = 0; i < trend.Fields().size(); ++i) {
        const ado::Field& field = trend.Fields()[i];
        if (field.name == kHysteresisMode) trend.Set(i, mode);
        if (field.name != kHysteresis) continue;
        const bool noNumber = amount.isEmpty() && project::IsNumber(field.type);
        trend.Set(i, noNumber ? ado::Value(ado::Null()) : ado::Value(projectdb::ToUtf16(amount)));
    }
}

/// What the user has left alone is not written, so that it stays as it is to the last digit, and
/// what another program has changed meanwhile stays that program's.
void Assign(ado::Recordset& trend, const FTrend& dialog, platform::Lcid language) {
    const std::string languageColumn = LanguageColumn(language);
    for (std::size_t i = 0; i < trend.Fields().size(); ++i) {
        const std::string_view name = trend.Fields()[i].name;
        const QLineEdit* text =
            name == languageColumn ? dialog.txtTextID : Find(kTextColumns, name, dialog);
        if (text != nullptr) {
            if (dialog.Touched(*text)) MDialogs::TextToField(trend, i, *text);
        } else if (name == kParamNames) {
            const std::optional<QString>& names = dialog.IndexTextParamNames();
            const ado::Value kept =
                names ? ado::Value(projectdb::ToUtf16(*names)) : ado::Value(ado::Null());
            if (trend.Get(i) != kept) trend.Set(i, kept);
        } else if (const QComboBox* list = Find(kCodeColumns, name, dialog)) {
            if (dialog.Touched(*list)) MDialogs::ComboToField(trend, i, *list);
        } else if (const KVColorSelect* color = Find(kColorColumns, name, dialog)) {
            if (color->HasColor() && dialog.Touched(*color)) {
                trend.Set(i, static_cast<std::int32_t>(color->Color()));
            }
        }
    }
    StoreHysteresis(trend, dialog);
    if (dialog.Touched(*dialog.txtName)) {
        project::RenameTrendText(trend, projectdb::ToUtf16(dialog.OpenedName()),
                                 projectdb::ToUtf16(dialog.txtName->text()));
    }
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
