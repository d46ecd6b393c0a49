#include "dialogs/FTrend.h"

#include <algorithm>
#include <optional>

#include "dialogs/ColourTexts.h"
#include "dialogs/ControlContent.h"
#include "dialogs/KeyFilter.h"
#include "platform/HelpTopics.h"
#include "project/Number.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;

constexpr int kDigitKeys = 2;  // see MResources::KeyFilter

constexpr int kNoFilter = 0;

std::optional<double> NumberIn(const QLineEdit& field) {
    const project::NumberText read = project::ReadNumber(field.text().toStdU16String());
    return read.any ? std::optional(read.number) : std::nullopt;
}

QString ControlName(QStringView kind, std::string_view column) {
    return kind.toString() +
           QLatin1StringView(column.data(), static_cast<qsizetype>(column.size()));
}

/// The code that a list shows, as far as a picture needs one.
template <typename Code>
Code CodeIn(const QComboBox& list) {
    return static_cast<Code>(std::max(0, list.currentIndex()));
}

/// What a picture shows, for those who do not see it: "Line Width: 2, Line Style: dashed".
QString ToldFields(std::initializer_list<const QWidget*> fields) {
    QStringList told;
    for (const QWidget* field : fields) {
        const auto* colour = qobject_cast<const KVColorSelect*>(field);
        const QString value =
            colour != nullptr ? colour->accessibleDescription() : ShownContentOf(*field);
        if (!value.isEmpty()) told += field->accessibleName() + QStringLiteral(": ") + value;
    }
    return told.join(QStringLiteral("; "));
}

}  // namespace

FTrend::FTrend(const DialogServices& services, QStringView nameGroup, QWidget* owner)
    : PropertyDialog(services, nameGroup, owner) {
    setupUi(this);
    CollectArrays();
    SetUpFrame({tabTrend, cmdOk, cmdCancel, cmdHelp, txtName});
    SetCaptions();
    SetColorTexts();
    FillLists();
    RestrictInputs();
    ConnectControls();
    ConnectPickers();
    NameControls();
    cmbHysteresisMode_Click();
    cmbFilter_Click();
    ShowCurve();
}

void FTrend::SetDisplayTextAvailable(bool available) {
    SetUsable(txtTextID, available);
    SetUsable(cmdEditText, available);
}

void FTrend::SetOpenedName(const QString& name) {
    keptName_ = name;
    PropertyDialog::SetOpenedName(name);
}

void FTrend::ShowCount(std::size_t trends) {
    setWindowTitle(windowTitle() + QStringLiteral(": ") +
                   Services().texts.GetText(MResourceTable::kTextStepTrends,
                                            {{u"n", QString::number(trends)}}));
    SetOpenedName({});
    for (QLineEdit* field : {txtName, txtTextID, txtTrendVar, txtComment, txtUnit}) {
        field->setToolTip(Text(MResourceTable::kTextManyPattern));
    }
}

QWidget* FTrend::FieldOf(std::string_view column) const {
    const project::Column* known = project::FindTrendColumn(column);
    if (known == nullptr || known->dialogCaption == 0) return nullptr;
    for (const QStringView kind : {u"txt", u"cmb", u"clr"}) {
        auto* field = findChild<QWidget*>(ControlName(kind, column));
        if (field != nullptr) return field;
    }
    return nullptr;
}

int FTrend::HelpTopic(int page) const {
    return platform::kHelpTrendStandard + page;
}

void FTrend::CollectArrays() {
    cmdChoose = {cmdChoose_0, cmdChoose_1, cmdChoose_2, cmdChoose_3,
                 cmdChoose_4, cmdChoose_5, cmdChoose_6};
    NameArray(u"cmdChoose", cmdChoose);
    txtTextID->setFont(Services().textFont);
}

void FTrend::SetCaptions() {
    setWindowTitle(Text(kTextTrendDialogTitle));
    for (int page = 0; page < tabTrend->count(); ++page) {
        tabTrend->setTabText(page, Text(kTextTrendPageStandard + page));
    }
    Frame1->setTitle(Text(kTextTrendDialogDisplayRange));
    lblTextID->setText(Text(kTextTrendDialogDisplayText));
    for (const project::Column& column : project::TrendColumns()) {
        if (column.dialogCaption == 0) continue;
        auto* label = findChild<QLabel*>(ControlName(u"lbl", column.name));
        if (label != nullptr) label->setText(Text(column.dialogCaption));
    }
    for (CurvePreview* picture : {picCurve, picTolerance}) {
        picture->setAccessibleName(Text(kTextSampleCurve));
        picture->setToolTip(Text(kTextSampleCurve));
    }
}

void FTrend::SetColorTexts() {
    const ColorTexts texts = ColourTexts(Services().texts);
    for (KVColorSelect* selector : findChildren<KVColorSelect*>()) selector->SetTexts(texts);
}

void FTrend::FillLists() {
    // The position in a list is the code that is stored, and the item data. No hysteresis comes
    // last.
    for (const project::Column& column : project::TrendColumns()) {
        auto* list = qobject_cast<QComboBox*>(FieldOf(column.name));
        if (list != nullptr) FillWithCodes(*list, column.codes);
    }
}

void FTrend::RestrictInputs() {
    // On purpose no sign and no decimal separator: display limits and tolerance lines are typed as
    // whole numbers. What is stored is shown as it is.
    for (QLineEdit* field :
         {txtFilterDepth, txtVLineWidth, txtVLower, txtVMax, txtVMaxSamples, txtVMin, txtVUpper}) {
        MResources::RestrictInput(*field, kDigitKeys, &Services().texts);
    }
}

void FTrend::ConnectControls() {
    connect(txtName, &QLineEdit::textChanged, this, &FTrend::txtName_Change);
    connect(cmbHysteresisMode, &QComboBox::currentIndexChanged, this,
            &FTrend::cmbHysteresisMode_Click);
    connect(cmbFilter, &QComboBox::currentIndexChanged, this, &FTrend::cmbFilter_Click);

    for (const QLineEdit* field : {txtVLineWidth, txtVMax, txtVMin, txtVUpper, txtVLower}) {
        connect(field, &QLineEdit::textChanged, this, &FTrend::ShowCurve);
    }
    for (const QComboBox* list : {cmbVLineStyle, cmbVDrawMode, cmbVConfig}) {
        connect(list, &QComboBox::currentIndexChanged, this, &FTrend::ShowCurve);
    }
    for (const KVColorSelect* color : {clrVLineColor, clrVUpperColor, clrVLowerColor}) {
        connect(color, &KVColorSelect::ColorChanged, this, &FTrend::ShowCurve);
    }
}

void FTrend::ConnectPickers() {
    ConnectTextsEditor(cmdEditText, txtTextID);
    const std::array<QLineEdit*, 7> fields = {txtTrendVar,     txtMaximum,      txtMinimum,
                                              txtSurrogateMax, txtSurrogateMin, txtErrorValue,
                                              txtHysteresis};
    for (std::size_t i = 0; i < fields.size(); ++i) ConnectVariablePicker(cmdChoose[i], fields[i]);
}

void FTrend::cmbHysteresisMode_Click() {
    const bool usable = cmbHysteresisMode->currentIndex() != cmbHysteresisMode->count() - 1;
    SetUsable(txtHysteresis, usable);
    SetUsable(cmdChoose[6], usable);
}

void FTrend::cmbFilter_Click() {
    SetUsable(txtFilterDepth, cmbFilter->currentIndex() != kNoFilter);
}

void FTrend::txtName_Change() {
    const QString name = txtName->text();
    if (!Loaded() || IsOfMany()) return;
    // A display text that was never edited apart from the name is renamed with it.
    if (name != keptName_ && txtTextID->isEnabledTo(this) && txtTextID->text() == keptName_) {
        txtTextID->setText(name);
    }
    keptName_ = name;
    // A trend whose name has been blank already must be mendable in all else.
    cmdOk->setEnabled(!name.trimmed().isEmpty() || name == OpenedName());
}

void FTrend::SetCurveColours(QList<int> colours) {
    curveColours_ = std::move(colours);
    ShowCurve();
}

void FTrend::ShowCurve() {
    const auto colorOf = [](const KVColorSelect& selector) {
        return selector.HasColor() ? selector.ShownColor() : selector.palette().text().color();
    };
    CurveLook look;
    look.line = colorOf(*clrVLineColor);
    if (!curveColours_.isEmpty() && !Touched(*clrVLineColor)) {
        for (const int colour : curveColours_) {
            look.others.append(KVColorSelect::Shown(colour, palette()));
        }
        look.line = look.others.takeFirst();
    }
    look.upperColor = colorOf(*clrVUpperColor);
    look.lowerColor = colorOf(*clrVLowerColor);
    look.width = static_cast<int>(std::clamp(NumberIn(*txtVLineWidth).value_or(1), 1.0, 1000.0));
    look.style = CodeIn<CurveLook::Style>(*cmbVLineStyle);
    look.mode = CodeIn<CurveLook::Mode>(*cmbVDrawMode);
    look.tolerance = CodeIn<CurveLook::Tolerance>(*cmbVConfig);
    look.displayMaximum = NumberIn(*txtVMax);
    look.displayMinimum = NumberIn(*txtVMin);
    look.upper = NumberIn(*txtVUpper);
    look.lower = NumberIn(*txtVLower);
    picCurve->SetLook(look);
    picTolerance->SetLook(look);
    picCurve->setAccessibleDescription(
        ToldFields({clrVLineColor, txtVLineWidth, cmbVLineStyle, cmbVDrawMode, txtVMin, txtVMax}));
    picTolerance->setAccessibleDescription(
        ToldFields({cmbVConfig, txtVUpper, clrVUpperColor, txtVLower, clrVLowerColor}));
}
