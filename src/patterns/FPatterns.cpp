#include "patterns/FPatterns.h"

#include <QAction>
#include <QComboBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QSet>
#include <QSignalBlocker>
#include <QTableView>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "controls/KVColorSelect.h"
#include "dialogs/ColourTexts.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "messages/LabelEdges.h"
#include "messages/MessageBox.h"
#include "paths/NativePath.h"
#include "patterns/KeptPatterns.h"
#include "patterns/PatternTexts.h"
#include "platform/Locale.h"
#include "project/Colour.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using MResourceTable::Number;
using projectdb::ToQString;
using projectdb::ToUtf16;
using Text = MResourceTable::Patterns;

constexpr int kWidest = 1'000'000;  // of a pattern, characters
constexpr int kMostNameParts = 4;   // of a variable
constexpr int kEntriesShown = 5;    // lines
constexpr int kRowMargin = 6;       // pixels
constexpr int kWidth = 165;         // average characters
constexpr int kHeight = 38;         // lines

enum EntryColumn { kEntry, kUnit, kSmallest, kLargest, kColour, kEntryColumns };

QString ListOf(const QStringList& entries) {
    return u'{' + entries.join(u'|') + u'}';
}

QString Count(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

}  // namespace

FPatterns::FPatterns(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                     std::int32_t archive, QWidget* owner)
    : PatternDialog(work, texts, u"FPatterns"_s, owner), archive_(archive) {
    ReadLanguages();
    known_ = patterns::ReadArchive(Work().Connection(), archive_);
    keptFile_ = patterns::kept::FileOf(
        ToQString(std::string_view(paths::ToNative(Work().Connection().DataSource()))));
    kept_ = patterns::kept::Load(keptFile_);
    Build();
    ExpandAfterTyping([this] { Expand(); });
    connect(&model_, &patterns::PlanModel::Corrected, this,
            [this] { Guard(u"FPatterns: Check"_s, [this] { Check(); }); });
    if (!kept_.isEmpty()) TakeKept(0);
    Expand();
}

void FPatterns::ReadLanguages() {
    ado::Recordset rows;
    rows.Open(project::kTextTable, Work().Connection(), ado::CommandType::Table);
    for (const ado::Field& field : rows.Fields()) {
        if (!project::IsLanguageColumn(field.name) || !project::IsText(field.type)) continue;
        const auto lcid = ToQString(field.name).mid(1).toUInt();
        const QString language = platform::LanguageName(lcid, Texts().Language().lcid);
        columns_.push_back(field.name);
        languages_ += language.isEmpty() ? QString::number(lcid) : language;
    }
}

void FPatterns::Build() {
    setWindowTitle(Texts().GetText(Text::Title));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildPatterns());
    BuildEntries();
    layout->addWidget(tblEntries_);
    BuildPreview();
    layout->addWidget(tblPlan_, 1);
    layout->addLayout(BuildButtons([this] { Make(); }));
    messages::AlignLabels(*this);
    resize(kWidth * fontMetrics().averageCharWidth(), kHeight * fontMetrics().lineSpacing());
    txtName_->setFocus();
}

QLineEdit* FPatterns::AddLine(QFormLayout& form, const QString& name, const QString& label) {
    auto* line = new QLineEdit(this);
    line->setObjectName(name);
    line->setMaxLength(kWidest);
    line->setAccessibleName(QString(label).remove(u'&'));
    connect(line, &QLineEdit::textChanged, this, [this] {
        Typed();
        ShowStateNow();
    });
    form.addRow(label, line);
    return line;
}

QLayout* FPatterns::BuildPatterns() {
    auto* form = new QFormLayout;
    cmbKept_ = new QComboBox(this);
    cmbKept_->setObjectName(u"cmbKept"_s);
    cmbKept_->setAccessibleName(Texts().GetText(Text::Kept).remove(u'&'));
    for (const patterns::TrendPatterns& each : kept_) cmbKept_->addItem(ToQString(each.name));
    cmbKept_->setEnabled(!kept_.isEmpty());
    connect(cmbKept_, &QComboBox::activated, this, [this](int number) { TakeKept(number); });
    form->addRow(Texts().GetText(Text::Kept), cmbKept_);
    txtName_ = AddLine(*form, u"txtName"_s, Texts().GetText(Text::Name));
    txtName_->setPlaceholderText(Texts().GetText(Text::Example));
    txtVariable_ = AddLine(*form, u"txtVariable"_s, Texts().GetText(Text::Variable));
    QAction* choose = txtVariable_->addAction(
        style()->standardIcon(QStyle::SP_FileDialogDetailedView), QLineEdit::TrailingPosition);
    choose->setObjectName(u"cmdChoose"_s);
    choose->setText(Texts().GetText(Number::kTextChoose));
    choose->setShortcut(Qt::Key_F4);
    choose->setShortcutContext(Qt::WidgetShortcut);
    choose->setToolTip(Texts().GetText(Number::kTextChoose));
    connect(choose, &QAction::triggered, this,
            [this] { Guard(u"FPatterns: cmdChoose_Click"_s, [this] { ChooseVariables(); }); });
    for (qsizetype i = 0; i < languages_.size(); ++i) {
        txtTexts_ += AddLine(*form, u"txtText(%1)"_s.arg(i),
                             Texts().GetText(Text::TextIn, {{u"language", languages_[i]}}));
    }
    return form;
}

void FPatterns::BuildEntries() {
    tblEntries_ = new QTableWidget(0, kEntryColumns, this);
    tblEntries_->setObjectName(u"tblEntries"_s);
    tblEntries_->setAccessibleName(Texts().GetText(Text::Entry));
    tblEntries_->setHorizontalHeaderLabels(
        {Texts().GetText(Text::Entry), Texts().GetText(Number::kTextUnit),
         Texts().GetText(Number::kTextVMin), Texts().GetText(Number::kTextVMax),
         Texts().GetText(Number::kTextVLineColor)});
    tblEntries_->verticalHeader()->hide();
    tblEntries_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowMargin);
    tblEntries_->horizontalHeader()->setStretchLastSection(true);
    tblEntries_->setTabKeyNavigation(false);
    tblEntries_->setFixedHeight((kEntriesShown + 1) *
                                (tblEntries_->verticalHeader()->defaultSectionSize() + 1));
    connect(tblEntries_, &QTableWidget::cellActivated, this, [this](int row, int column) {
        auto* chooser = qobject_cast<KVColorSelect*>(tblEntries_->cellWidget(row, column));
        if (chooser != nullptr) chooser->OpenPalette();
    });
    connect(tblEntries_, &QTableWidget::itemChanged, this, [this] { Typed(); });
}

void FPatterns::BuildPreview() {
    tblPlan_ = new QTableView(this);
    tblPlan_->setObjectName(u"tblPlan"_s);
    tblPlan_->setAccessibleName(Texts().GetText(Text::Preview));
    tblPlan_->setModel(&model_);
    tblPlan_->setTabKeyNavigation(false);
    tblPlan_->setWordWrap(false);
    tblPlan_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    tblPlan_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowMargin);
    tblPlan_->horizontalHeader()->setStretchLastSection(true);
    model_.Reset(languages_);
    const int letter = fontMetrics().averageCharWidth();
    for (int column = 0; column < model_.columnCount(); ++column) {
        const bool isText = column < static_cast<int>(plan_.UnitColumn()) ||
                            column < static_cast<int>(patterns::TrendPlan::kFirstText) +
                                         static_cast<int>(columns_.size());
        tblPlan_->setColumnWidth(column, (isText ? 26 : 12) * letter);
    }
}

patterns::TrendPatterns FPatterns::TypedPatterns() const {
    patterns::TrendPatterns typed;
    typed.name = ToUtf16(txtName_->text());
    typed.variable = ToUtf16(txtVariable_->text());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        typed.texts.emplace_back(columns_[i],
                                 ToUtf16(txtTexts_[static_cast<qsizetype>(i)]->text()));
    }
    for (std::size_t row = 0; row < entries_.size(); ++row) {
        const auto cell = [&](int column) {
            return ToUtf16(tblEntries_->item(static_cast<int>(row), column)->text().trimmed());
        };
        typed.entries[entries_[row]] = {cell(kUnit), cell(kSmallest), cell(kLargest),
                                        cell(kColour)};
    }
    return typed;
}

void FPatterns::Expand() {
    StopWaiting();
    plan_.Set(TypedPatterns());
    ShowEntries();
    model_.Reset(languages_);
    Check();
}

/// A line for each entry of the lists; what stands in those that stay is kept.
void FPatterns::ShowEntries() {
    std::vector<std::pair<std::size_t, std::size_t>> wanted;
    const auto braces = plan_.Name().Braces();
    for (std::size_t brace = 0; brace < braces.size() && !plan_.Wrong(); ++brace) {
        if (!braces[brace].isList) continue;
        for (std::size_t i = 0; i < braces[brace].entries.size(); ++i)
            wanted.emplace_back(brace, i);
    }
    tblEntries_->setVisible(!wanted.empty());
    const patterns::TrendPatterns& typed = plan_.Patterns();
    const QSignalBlocker blocker(tblEntries_);
    entries_ = wanted;
    tblEntries_->setRowCount(static_cast<int>(wanted.size()));
    for (std::size_t row = 0; row < wanted.size(); ++row) {
        const auto known = typed.entries.find(wanted[row]);
        const patterns::EntrySettings settings =
            known != typed.entries.end() ? known->second : patterns::EntrySettings();
        const auto& [brace, entry] = wanted[row];
        const std::u16string* cells[] = {&braces[brace].entries[entry], &settings.unit,
                                         &settings.smallest, &settings.largest, &settings.colour};
        for (int column = 0; column < kEntryColumns; ++column) {
            auto* item = new QTableWidgetItem(ToQString(*cells[column]));
            if (column == kEntry || column == kColour) {
                item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            }
            tblEntries_->setItem(static_cast<int>(row), column, item);
        }
        ShowColour(static_cast<int>(row), settings.colour);
    }
}

/// Over the cell, which keeps the colour as a pattern's entry has it. One that is there stays, with
/// the keyboard that it may have.
void FPatterns::ShowColour(int row, const std::u16string& colour) {
    auto* chooser = qobject_cast<KVColorSelect*>(tblEntries_->cellWidget(row, kColour));
    if (chooser == nullptr) {
        chooser = new KVColorSelect;
        chooser->setObjectName(u"clrEntry(%1)"_s.arg(row));
        chooser->setAccessibleName(Texts().GetText(Number::kTextVLineColor));
        auto* clear = new QAction(chooser);
        clear->setShortcut(Qt::Key_Delete);
        clear->setShortcutContext(Qt::WidgetShortcut);
        connect(clear, &QAction::triggered, this,
                [this, row] { tblEntries_->item(row, kColour)->setText({}); });
        chooser->addAction(clear);
        connect(chooser, &KVColorSelect::ColorChanged, this, [this, row](int chosen) {
            tblEntries_->item(row, kColour)->setText(ToQString(project::ColourText(chosen)));
        });
        tblEntries_->setCellWidget(row, kColour, chooser);
    }
    const QSignalBlocker blocker(chooser);
    ColorTexts words = ColourTexts(Texts());
    if (!colour.empty()) words.none = ToQString(colour);  // what is no colour is shown as it is
    chooser->SetTexts(words);
    const auto number = project::ReadColour(colour);
    number ? chooser->SetColor(*number) : chooser->ClearColor();
}

void FPatterns::Check() {
    plan_.Check(known_);
    model_.ShowProblems();
    ShowStateNow();
}

QString FPatterns::StateText() const {
    if (const auto& wrong = plan_.Wrong()) {
        const QLineEdit* field = wrong->column == patterns::TrendPlan::kName ? txtName_
                                 : wrong->column == patterns::TrendPlan::kVariable
                                     ? txtVariable_
                                     : txtTexts_[static_cast<qsizetype>(
                                           wrong->column - patterns::TrendPlan::kFirstText)];
        return patterns::FaultText(wrong->fault, field->accessibleName(), Texts());
    }
    if (plan_.ProblemCount() > 0) {
        return Texts().GetText(Text::Problems, {{u"n", Count(plan_.ProblemCount())}});
    }
    return plan_.Rows() == 0 ? Texts().GetText(Text::Hint) : QString();
}

void FPatterns::ShowStateNow() {
    const bool mayMake = !IsWaiting() && plan_.ProblemCount() == 0;
    ShowState(StateText(), mayMake ? plan_.Count() : 0, static_cast<int>(Text::MakeOne),
              static_cast<int>(Text::MakeMany));
}

void FPatterns::TakeKept(int number) {
    const patterns::TrendPatterns patterns = kept_.value(number);
    txtName_->setText(ToQString(patterns.name));
    txtVariable_->setText(ToQString(patterns.variable));
    for (const auto& [column, text] : patterns.texts) {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (columns_[i] == column) {
                txtTexts_[static_cast<qsizetype>(i)]->setText(ToQString(text));
            }
        }
    }
    plan_.Set(patterns);
    ShowEntries();
    Expand();
}

void FPatterns::ChooseVariables() {
    const auto chosen = Work().ChooseVariables(this, txtVariable_->text());
    if (!chosen) return;
    if (chosen->size() == 1) return txtVariable_->setText(chosen->front());
    TakeVariables(*chosen);
}

/// A trend for each, called as the variable behind its last points, as many of them as tell the
/// variables apart.
void FPatterns::TakeVariables(const QStringList& variables) {
    txtVariable_->setText(ListOf(variables));
    const auto braces = plan_.Name().Braces();
    const bool suits = braces.size() == 1 &&
                       braces[0].entries.size() == static_cast<std::size_t>(variables.size());
    if (suits && !txtName_->text().isEmpty()) return;
    QStringList names;
    for (int parts = 1; parts <= kMostNameParts; ++parts) {
        names.clear();
        for (const QString& variable : variables) {
            names += variable.section(u'.', -parts).replace(u'.', u' ');
        }
        if (QSet<QString>(names.begin(), names.end()).size() == names.size()) break;
    }
    txtName_->setText(ListOf(names));
}

void FPatterns::Make() {
    const std::vector<project::NewTrend> trends = plan_.Trends();
    const auto total = static_cast<int>(trends.size());
    std::optional<RowProgress> progress;
    progress.emplace(Texts(), static_cast<int>(Text::Making), this);
    patterns::Made made;
    const bool run = Work().RunStep([&] {
        made = patterns::MakeTrends(Work().Connection(), archive_, trends, [&](std::size_t done) {
            return progress->Function()(static_cast<int>(done), total);
        });
    });
    progress.reset();
    if (!run) return;
    if (made.isDone) {
        patterns::kept::Keep(keptFile_, plan_.Patterns());
        made_ = made.ids;
        return accept();
    }
    // Others have given names meanwhile; they are marked now.
    known_ = patterns::ReadArchive(Work().Connection(), archive_);
    Check();
}
