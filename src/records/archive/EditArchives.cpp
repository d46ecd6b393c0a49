// Several archives in the dialog of one.

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ado/AdoError.h"
#include "cells/CellRefusal.h"
#include "dialogs/ArchiveSummary.h"
#include "dialogs/ManyRecords.h"
#include "messages/MessageBox.h"
#include "project/FieldText.h"
#include "project/Pattern.h"
#include "project/Rows.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "records/archive/ArchiveFields.h"
#include "records/EditSession.h"
#include "records/MArchiv.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace MArchiv {
namespace {

namespace ArchiveType = project::ArchiveType;
using EditSession::TellNotLoaded;
using EditSession::TellNotStored;
using EditSession::Try;

/// As the user sees them while the dialog is open.
struct Archive {
    std::int32_t id = 0;
    QString name;
    std::int32_t text = 0;  // row of its text; 0: none
    ado::Value display;     // what stands there
    std::map<std::string, ado::Value, std::less<>> fields;

    [[nodiscard]] ado::Value At(std::string_view column) const {
        const auto field = fields.find(column);
        return field == fields.end() ? ado::Value() : field->second;
    }
    [[nodiscard]] std::int32_t Type() const {
        const ado::Value type = At("Type");
        return ado::IsNull(type) ? 0 : ado::ToLong(type);
    }
    [[nodiscard]] int FileChange() const {
        const ado::Value samples = At("MaxSamples");
        return FileChangeOf(TextOf(At("NewFile")), ado::IsNull(samples) ? 0 : ado::ToLong(samples));
    }
};

class ManyArchives {
public:
    /// Throws ado::AdoError. Archives that are not there any more are not among them.
    ManyArchives(project::Rows& rows, const std::vector<std::int32_t>& ids, platform::Lcid language)
        : fields_(rows.Archives().Fields()), language_(project::LanguageColumn(language)) {
        const bool hasLanguage = project::HasField(rows.Texts(), language_);
        for (const std::int32_t id : ids) {
            if (!rows.SeekArchive(id)) continue;
            Archive archive;
            archive.id = id;
            archive.name = projectdb::ToQString(project::NameOf(rows.Archives()));
            for (const ado::Field& field : fields_) {
                archive.fields[field.name] = rows.Archives().Get(field.name);
            }
            if (hasLanguage && rows.SeekTextOf(rows.Archives())) {
                archive.text = ado::ToLong(rows.Texts().Get(project::kKeyColumn));
                archive.display = rows.Texts().Get(language_);
            }
            archives_.push_back(std::move(archive));
        }
    }

    [[nodiscard]] const std::vector<Archive>& All() const { return archives_; }
    /// Each has a row for its text.
    [[nodiscard]] bool HaveTexts() const {
        return std::all_of(archives_.begin(), archives_.end(),
                           [](const Archive& archive) { return archive.text != 0; });
    }

    /// The dialog, which has been filled with one of them, stands for all.
    void Show(FArchiv& dialog) const {
        ManyRecords& shown = dialog.ShowMany(static_cast<int>(archives_.size()),
                                             MResourceTable::kTextChangeArchiveField,
                                             MResourceTable::kTextChangeArchiveFields);
        for (const ado::Field& field : fields_) {
            if (QWidget* control = ControlOf(dialog, field.name)) {
                shown.Add(*control,
                          Differ([&](const Archive& each) { return each.At(field.name); }));
            }
        }
        const auto bits = [this](std::int32_t mask) {
            return Differ([mask](const Archive& each) { return each.Type() & mask; });
        };
        shown.Add(*dialog.cboNewFile,
                  Differ([](const Archive& each) { return each.FileChange(); }));
        shown.Add(*dialog.cmbType, bits(ArchiveType::kKindMask));
        shown.Add({dialog.optHDRAM[0], dialog.optHDRAM[1]}, bits(ArchiveType::kMainMemory));
        shown.Add({dialog.optSaveFast[0], dialog.optSaveFast[1]}, bits(ArchiveType::kSaveSafe));
        shown.Add(*dialog.chkRedundancy, bits(ArchiveType::kRedundancy));
        shown.Add(*dialog.txtTextID, Differ([](const Archive& each) { return each.display; }));
        dialog.SetOtherTexts({}, {});  // they are the first one's
        dialog.SetDisplayTextAvailable(HaveTexts());
        dialog.ShowCount(archives_.size());
    }

    /// What the user has changed. A pattern that does not stand for as many texts as there are
    /// archives is told of in `refusal`, and nothing is to be written.
    [[nodiscard]] std::vector<project::CellChange> Changes(const FArchiv& dialog,
                                                           const MResources::TextTable& texts,
                                                           QString& refusal) const {
        std::vector<project::CellChange> changes;
        for (const ado::Field& field : fields_) {
            const auto value = ValueOfField(dialog, field);
            if (!value) continue;
            const auto each = Each(*value, texts, refusal);
            for (std::size_t i = 0; i < each.size(); ++i) {
                Change(changes, archives_[i], field.name, each[i]);
            }
        }
        if (dialog.Touched(*dialog.txtTextID)) AddTexts(dialog, texts, changes, refusal);
        for (const Archive& archive : archives_) {
            const std::int32_t type = TypeOf(archive, dialog);
            if (type != archive.Type()) Change(changes, archive, "Type", type);
            AddFileChange(archive, type, dialog, changes);
        }
        return changes;
    }

private:
    template <typename Of>
    [[nodiscard]] bool Differ(const Of& of) const {
        return std::any_of(archives_.begin(), archives_.end(), [&](const Archive& archive) {
            return of(archive) != of(archives_.front());
        });
    }

    /// The control that stands for a column alone.
    [[nodiscard]] static QWidget* ControlOf(const FArchiv& dialog, std::string_view column) {
        if (QLineEdit* text = TextFieldOf(dialog, column)) return text;
        if (column == "FileName") return dialog.txtFileName;
        if (column == "FilePath") return dialog.cboFilePath;
        if (column == "RedundancyFilePath") return dialog.cboRedundancyFilePath;
        if (column == "SampleMode") return dialog.cmbSampleMode;
        if (column == "MaxSamples") return dialog.txtMaxSamples;
        if (column == "NewFile") return dialog.txtNewFile;
        return nullptr;
    }

    /// The user has chosen when files change, which says what stands in two columns; the dialog
    /// has worked that out.
    [[nodiscard]] static bool ChoosesFileChange(const FArchiv& dialog) {
        return dialog.Touched(*dialog.cboNewFile) && dialog.cboNewFile->currentIndex() >= 0 &&
               dialog.cboNewFile->isEnabledTo(&dialog);
    }

    /// What the column is to hold; nothing where the user has not touched it.
    [[nodiscard]] static std::optional<ado::Value> ValueOfField(const FArchiv& dialog,
                                                                const ado::Field& field) {
        if (ChoosesFileChange(dialog) && field.name == "NewFile") {
            return ValueOf(dialog.lblNewFile->text());
        }
        if (ChoosesFileChange(dialog) && field.name == "MaxSamples") {
            return Read(dialog.lblMaxSamples->text(), field);
        }
        const QWidget* control = ControlOf(dialog, field.name);
        if (control == nullptr || !dialog.Touched(*control)) return std::nullopt;
        if (control == dialog.cmbSampleMode) {
            if (dialog.cmbSampleMode->currentIndex() < 0) return std::nullopt;
            return static_cast<std::int32_t>(dialog.cmbSampleMode->currentData().toInt());
        }
        if (const auto* list = qobject_cast<const QComboBox*>(control)) {
            return ValueOf(list->currentText());
        }
        const QString text = static_cast<const QLineEdit*>(control)->text();
        const bool isPlain = field.name == "FileName" || field.name == "NewFile";
        return isPlain ? ValueOf(text) : Read(text, field);
    }
    /// What a typed text means in the field, as in the dialog of one.
    [[nodiscard]] static std::optional<ado::Value> Read(const QString& text,
                                                        const ado::Field& field) {
        const project::Reading read = project::ReadDialogText(projectdb::ToUtf16(text), field);
        if (read.problem == project::Problem::NotEditable) return std::nullopt;
        return read.value;
    }

    /// A value for each archive.
    [[nodiscard]] std::vector<ado::Value> Each(const ado::Value& value,
                                               const MResources::TextTable& texts,
                                               QString& refusal) const {
        const auto* text = std::get_if<std::u16string>(&value);
        const auto each = text != nullptr ? project::PatternTexts(*text) : std::nullopt;
        if (!each) return std::vector<ado::Value>(archives_.size(), value);
        if (each->size() == archives_.size()) return {each->begin(), each->end()};
        refusal = texts.GetText(MResourceTable::kTextManyPatternArchives,
                                {{u"text", projectdb::ToQString(*text)},
                                 {u"n", QString::number(each->size())},
                                 {u"archives", QString::number(archives_.size())}});
        return {};
    }

    static void Change(std::vector<project::CellChange>& changes, const Archive& archive,
                       std::string_view column, const ado::Value& value) {
        if (!archive.fields.contains(column)) return;
        changes.push_back(
            {project::kArchiveTable, archive.id, std::string(column), archive.At(column), value});
    }

    void AddTexts(const FArchiv& dialog, const MResources::TextTable& texts,
                  std::vector<project::CellChange>& changes, QString& refusal) const {
        const auto each = Each(ValueOf(dialog.txtTextID->text()), texts, refusal);
        for (std::size_t i = 0; i < each.size(); ++i) {
            changes.push_back(
                {project::kTextTable, archives_[i].text, language_, archives_[i].display, each[i]});
        }
    }

    /// Bits that the dialog does not edit survive only an unchanged type.
    [[nodiscard]] static std::int32_t TypeOf(const Archive& archive, const FArchiv& dialog) {
        const std::int32_t stored = archive.Type() & ArchiveType::kKnown;
        std::int32_t type = stored;
        const auto put = [&](const QWidget& control, std::int32_t mask, std::int32_t bits) {
            if (dialog.Touched(control)) type = (type & ~mask) | bits;
        };
        const auto bit = [&](const QWidget& control, std::int32_t mask, bool isSet) {
            put(control, mask, isSet ? mask : 0);
        };
        if (dialog.cmbType->currentIndex() >= 0) {
            put(*dialog.cmbType, ArchiveType::kKindMask, dialog.cmbType->currentData().toInt());
        }
        bit(*dialog.optHDRAM[1], ArchiveType::kMainMemory, dialog.optHDRAM[1]->isChecked());
        bit(*dialog.optSaveFast[1], ArchiveType::kSaveSafe, dialog.optSaveFast[1]->isChecked());
        bit(*dialog.chkRedundancy, ArchiveType::kRedundancy,
            dialog.chkRedundancy->checkState() == Qt::Checked);
        return type == stored ? archive.Type() : type;
    }

    /// The size of a circular buffer must not go along as the length of a file.
    static void AddFileChange(const Archive& archive, std::int32_t type, const FArchiv& dialog,
                              std::vector<project::CellChange>& changes) {
        const auto isFile = [](std::int32_t bits) {
            return (bits & ArchiveType::kKindMask) == ArchiveType::kContinuationFile;
        };
        const bool isTold = ChoosesFileChange(dialog) || dialog.Touched(*dialog.txtMaxSamples);
        if (!isTold && isFile(type) && !isFile(archive.Type()) &&
            !TextOf(archive.At("NewFile")).isEmpty()) {
            Change(changes, archive, "MaxSamples", std::int32_t{0});
        }
    }

    std::vector<ado::Field> fields_;
    std::string language_;  // column
    std::vector<Archive> archives_;
};

/// Of the archive, also where its text has been refused.
QString NameOf(const project::CellChange& change, const std::vector<Archive>& archives) {
    const bool isText = change.table == project::kTextTable;
    for (const Archive& archive : archives) {
        if ((isText ? archive.text : archive.id) == change.id) return archive.name;
    }
    return {};
}

/// False when nothing has been written, which the user has been told.
bool Write(ado::Connection& connection, const ManyArchives& archives,
           const std::vector<project::CellChange>& changes, FArchiv& dialog, const Many& many,
           const DialogServices& services) {
    project::WrittenCells written;
    const auto failure = Try("DialogToArchive", [&] {
        many.runStep([&] { written = project::WriteCells(connection, changes); });
    });
    if (failure) {
        TellNotStored(dialog, services.texts, MResourceTable::kTextArchiveWriteBackFailed, *failure,
                      false);
    } else if (!written.refusals.empty()) {
        const project::CellRefusal& first = written.refusals.front();
        messages::ShowMessage(
            CellRefusalText(first, NameOf(changes[first.change], archives.All()), services.texts),
            messages::MessageButtons::Ok, dialog.windowTitle(), &dialog);
    }
    return written.isDone;
}

}  // namespace

bool EditArchives(ado::Connection& connection, const Many& many, platform::Lcid language,
                  const DialogServices& services, QWidget* owner) {
    FArchiv dialog(services, projectdb::kArchiveNames, owner);
    std::optional<ManyArchives> archives;
    const auto unread = Try("ArchiveToDialog", [&] {
        project::Rows rows(connection);
        archives.emplace(rows, many.ids, language);
        if (archives->All().empty() || !rows.SeekArchive(archives->All().front().id)) {
            throw ado::AdoError(ado::ErrorNumber::kRowNotLocated, "The archives are gone.");
        }
        rows.Texts().SetFilter({});
        LoadArchive({rows.Archives(), rows.Texts(), language}, dialog, services.texts, owner);
        archives->Show(dialog);
    });
    if (unread) {
        TellNotLoaded(dialog, services.texts, MResourceTable::kTextArchiveInitFailed, *unread,
                      owner);
        return false;
    }
    dialog.SetStore([&] {
        QString refusal;
        const auto changes = archives->Changes(dialog, services.texts, refusal);
        if (refusal.isEmpty()) {
            return changes.empty() || Write(connection, *archives, changes, dialog, many, services);
        }
        messages::ShowMessage(refusal, messages::MessageButtons::Ok, dialog.windowTitle(), &dialog);
        return false;
    });
    dialog.exec();
    return !dialog.Cancelled();
}

}  // namespace MArchiv
