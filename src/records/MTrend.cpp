#include "records/MTrend.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "dialogs/FTrend.h"
#include "languages/MResources.h"
#include "languages/MResourceTable.h"
#include "platform/MessageBox.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/EditSession.h"
#include "records/MDialogs.h"

namespace MTrend {
namespace {

using EditSession::LanguageColumn;
using EditSession::LimitLength;
using EditSession::Succeeds;

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

/// A value as a text control shows it: Null, and the one character that stands for an empty text,
/// as nothing.
QString TextOf(const ado::Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return platform::NumberToText(*number);
    if (const auto* number = std::get_if<float>(&value)) {
        constexpr int kDigits = 7;  // more would show what a float only seems to have
        return platform::NumberToText(
            QString::number(static_cast<double>(*number), 'g', kDigits).toDouble());
    }
    const std::u16string text = ado::ToText(value);
    return text == std::u16string_view(u"\0", 1) ? QString() : projectdb::ToQString(text);
}

/// A text control shows fewer digits of a floating number than it has. Where the user has left it
/// alone the number must not lose them.
bool ShowsStoredNumber(const ado::Value& stored, const QLineEdit& control) {
    const bool floating =
        std::holds_alternative<double>(stored) || std::holds_alternative<float>(stored);
    return floating && control.text() == TextOf(stored);
}

void Load(const ado::Recordset& trend, FTrend& dialog, platform::Lcid language) {
    const std::string languageColumn = LanguageColumn(language);
    QString hysteresis;
    std::int32_t mode = 0;
    dialog.SetDisplayTextAvailable(false);
    for (std::size_t i = 0; i < trend.Fields().size(); ++i) {
        const ado::Field& field = trend.Fields()[i];
        const std::string_view name = field.name;
        if (name == languageColumn) {
            dialog.SetDisplayTextAvailable(true);
            LimitLength(*dialog.txtTextID, field);
            dialog.txtTextID->setText(TextOf(trend.Get(i)));
        } else if (name == "ParamNames") {
            const ado::Value names = trend.Get(i);
            dialog.SetIndexTextParamNames(
                ado::IsNull(names) ? std::nullopt
                                   : std::optional(projectdb::ToQString(ado::ToText(names))));
        } else if (name == "Hysteresis") {
            LimitLength(*dialog.txtHysteresis, field);
            hysteresis = TextOf(trend.Get(i));
        } else if (name == "HysteresisMode") {
            mode = ado::ToLong(trend.Get(i));
        } else if (QLineEdit* text = Find(kTextColumns, name, dialog)) {
            LimitLength(*text, field);
            text->setText(TextOf(trend.Get(i)));
        } else if (QComboBox* list = Find(kCodeColumns, name, dialog)) {
            const std::int32_t code = ado::ToLong(trend.Get(i), -1);
            list->setCurrentIndex(code >= 0 && code < list->count() ? code : -1);
        } else if (KVColorSelect* color = Find(kColorColumns, name, dialog)) {
            const ado::Value value = trend.Get(i);
            ado::IsNull(value) ? color->ClearColor() : color->SetColor(ado::ToLong(value));
        }
    }
    const int last = dialog.cmbHysteresisMode->count() - 1;
    if (hysteresis.isEmpty()) mode = last;
    dialog.cmbHysteresisMode->setCurrentIndex(std::clamp(mode, 0, last));
    dialog.txtHysteresis->setText(hysteresis);
    dialog.SetOpenedName(dialog.txtName->text());
}

void Store(ado::Recordset& trend, const FTrend& dialog, platform::Lcid language) {
    const std::string languageColumn = LanguageColumn(language);
    const int mode = dialog.cmbHysteresisMode->currentIndex();
    const bool none = mode == dialog.cmbHysteresisMode->count() - 1;
    const QString hysteresis = none ? QString() : dialog.txtHysteresis->text();
    for (std::size_t i = 0; i < trend.Fields().size(); ++i) {
        const std::string_view name = trend.Fields()[i].name;
        if (name == languageColumn) {
            MDialogs::TextToField(trend, i, *dialog.txtTextID);
        } else if (name == "ParamNames") {
            const std::optional<QString>& names = dialog.IndexTextParamNames();
            trend.Set(i, names ? ado::Value(projectdb::ToUtf16(*names)) : ado::Value(ado::Null()));
        } else if (name == "Hysteresis") {
            trend.Set(i, projectdb::ToUtf16(hysteresis));
        } else if (name == "HysteresisMode") {
            trend.Set(i, static_cast<std::int32_t>(mode));
        } else if (const QLineEdit* text = Find(kTextColumns, name, dialog)) {
            if (!ShowsStoredNumber(trend.Get(i), *text)) MDialogs::TextToField(trend, i, *text);
        } else if (const QComboBox* list = Find(kCodeColumns, name, dialog)) {
            MDialogs::ComboToField(trend, i, *list);
        } else if (const KVColorSelect* color = Find(kColorColumns, name, dialog)) {
            if (color->HasColor()) trend.Set(i, static_cast<std::int32_t>(color->Color()));
        }
    }
    trend.Update();
}

}  // namespace

bool TrendToDialog(const ado::Recordset& trend, FTrend& dialog, platform::Lcid language) {
    return Succeeds("TrendToDialog", [&] { Load(trend, dialog, language); });
}

bool DialogToTrend(ado::Recordset& trend, const FTrend& dialog, platform::Lcid language) {
    return Succeeds("DialogToTrend", [&] { Store(trend, dialog, language); });
}

bool EditTrend(ado::Recordset& trend, platform::Lcid language, const DialogServices& services,
               QWidget* owner) {
    FTrend dialog(services, projectdb::kTrendNames, owner);
    const auto tell = [&](int text) {
        platform::ShowMessage(services.texts.GetText(text), platform::MessageButtons::Ok,
                              dialog.windowTitle(), owner);
    };
    if (!TrendToDialog(trend, dialog, language)) {
        tell(MResourceTable::kTextTrendInitFailed);
        return false;
    }
    dialog.exec();
    if (dialog.Cancelled()) return false;
    if (!DialogToTrend(trend, dialog, language)) {
        tell(MResourceTable::kTextTrendWriteBackFailed);
        std::ignore = Succeeds("CancelUpdate", [&] { trend.CancelUpdate(); });
        dialog.TakeBackName();
        return false;
    }
    return true;
}

}  // namespace MTrend
