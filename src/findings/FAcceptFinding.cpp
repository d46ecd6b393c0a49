#include "findings/FAcceptFinding.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <utility>

#include "findings/FindingTexts.h"
#include "messages/LabelEdges.h"
#include "messages/PlainTexts.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace findings {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace MResourceTable;

constexpr int kLeastWidth = 60;  // average characters

}  // namespace

FAcceptFinding::FAcceptFinding(const MResources::TextTable& texts,
                               std::vector<project::Finding> findings, const QString& file,
                               QWidget* owner)
    : QDialog(owner),
      texts_(texts),
      findings_(std::move(findings)),
      optThese_(new QRadioButton(this)),
      optRule_(new QRadioButton(this)),
      txtReason_(new QLineEdit(this)),
      txtBy_(new QLineEdit(qEnvironmentVariable("USER"), this)),
      chkUntil_(new QCheckBox(texts.GetText(kTextAcceptUntil), this)),
      datUntil_(new QDateEdit(QDate::currentDate().addYears(1), this)) {
    setObjectName(u"FAcceptFinding"_s);
    setWindowTitle(texts.GetText(kTextAcceptTitle));
    messages::KeepTextsPlain(*this);
    const auto name = [](QWidget* widget, const QString& text) { widget->setObjectName(text); };
    name(optThese_, u"optThese"_s);
    name(optRule_, u"optRule"_s);
    name(txtReason_, u"txtReason"_s);
    name(txtBy_, u"txtBy"_s);
    name(chkUntil_, u"chkUntil"_s);
    name(datUntil_, u"datUntil"_s);
    optThese_->setText(
        findings_.size() == 1
            ? texts.GetText(kTextAcceptThis)
            : texts.GetText(kTextAcceptThese, {{u"n", QString::number(findings_.size())}}));
    optThese_->setChecked(true);
    optRule_->setText(texts.GetText(kTextAcceptRule));
    datUntil_->setAccessibleName(chkUntil_->text().remove(u'&'));
    datUntil_->setCalendarPopup(true);
    datUntil_->setEnabled(false);
    connect(chkUntil_, &QCheckBox::toggled, datUntil_, &QWidget::setEnabled);
    connect(txtReason_, &QLineEdit::textChanged, this, &FAcceptFinding::UpdateOk);

    const auto label = [this](const QString& text) {
        auto* made = new QLabel(text, this);
        made->setWordWrap(true);
        return made;
    };
    auto* buttons = new QDialogButtonBox(this);
    cmdOk_ = buttons->addButton(texts.GetText(kTextOk), QDialogButtonBox::AcceptRole);
    name(cmdOk_, u"cmdOk"_s);
    cmdOk_->setDefault(true);
    QPushButton* cmdCancel =
        buttons->addButton(texts.GetText(kTextCancel), QDialogButtonBox::RejectRole);
    name(cmdCancel, u"cmdCancel"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout(this);
    form->addRow(label(RuleText()));
    form->addRow(optThese_);
    form->addRow(optRule_);
    form->addRow(texts.GetText(kTextAcceptReason), txtReason_);
    form->addRow(texts.GetText(kTextAcceptBy), txtBy_);
    form->addRow(chkUntil_, datUntil_);
    form->addRow(label(texts.GetText(kTextAcceptHint, {{u"file", QFileInfo(file).fileName()}})));
    form->addRow(buttons);
    messages::AlignLabels(*this);
    setMinimumWidth(kLeastWidth * fontMetrics().averageCharWidth());
    UpdateOk();
    txtReason_->setFocus();
}

/// What the rules of the findings mean, each once.
QString FAcceptFinding::RuleText() const {
    QStringList lines;
    for (const project::Finding& finding : findings_) {
        const QString line = MeaningOf(finding.rule, texts_);
        if (!lines.contains(line)) lines += line;
    }
    return lines.join(u'\n');
}

void FAcceptFinding::UpdateOk() {
    cmdOk_->setEnabled(!txtReason_->text().trimmed().isEmpty());
}

std::vector<project::Acceptance> FAcceptFinding::Acceptances() const {
    const project::FindingWords words = WordsOf(texts_);
    std::vector<project::Acceptance> acceptances;
    QSet<int> rules;
    for (const project::Finding& finding : findings_) {
        project::Acceptance acceptance;
        acceptance.rule = project::InfoOf(finding.rule).id;
        acceptance.reason = txtReason_->text().trimmed().toStdString();
        acceptance.by = txtBy_->text().trimmed().toStdString();
        if (chkUntil_->isChecked()) {
            acceptance.until = datUntil_->date().toString(Qt::ISODate).toStdString();
        }
        if (optRule_->isChecked()) {
            if (rules.contains(static_cast<int>(finding.rule))) continue;
            rules.insert(static_cast<int>(finding.rule));
        } else {
            acceptance.place = project::PlaceOf(finding);
            acceptance.fingerprint = project::FingerprintOf(finding);
            acceptance.message =
                projectdb::ToUtf8(projectdb::ToQString(project::MessageOf(finding, words)));
        }
        acceptances.push_back(std::move(acceptance));
    }
    return acceptances;
}

}  // namespace findings
