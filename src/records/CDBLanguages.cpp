#include "records/CDBLanguages.h"

#include <algorithm>
#include <QComboBox>
#include <QLoggingCategory>
#include <QSignalBlocker>
#include <string>

#include "ado/AdoError.h"
#include "ado/Recordset.h"
#include "platform/Error.h"
#include "platform/ProfileFile.h"
#include "platform/Registry.h"
#include "project/Schema.h"
#include "records/FontString.h"
#include "texts/Language.h"
#include "texts/MResources.h"

namespace {

using namespace Qt::Literals::StringLiterals;

Q_LOGGING_CATEGORY(logLanguages, "korvala.languages")

constexpr double kLargestSize = 400;  // points; what a cell could still show
constexpr double kLightest = 1;
constexpr double kHeaviest = 1000;

/// Closes a recordset at the end of a block. A failure to close does not hide the cause of the
/// first one; the rows are not needed any more.
class Closing {
public:
    explicit Closing(ado::Recordset& recordset) : recordset_(recordset) {}
    Closing(const Closing&) = delete;
    Closing& operator=(const Closing&) = delete;
    ~Closing() {
        try {
            if (recordset_.State() == ado::ObjectState::Open) recordset_.Close();
        } catch (const ado::AdoError& error) {
            qCWarning(logLanguages, "%s", error.what());
        }
    }

private:
    ado::Recordset& recordset_;
};

/// The right-most column of that name.
std::optional<std::size_t> TextColumn(const ado::Recordset& texts, const std::string& name) {
    const std::vector<ado::Field>& fields = texts.Fields();
    const auto found = std::find_if(fields.rbegin(), fields.rend(),
                                    [&](const ado::Field& field) { return field.name == name; });
    if (found == fields.rend()) return std::nullopt;
    return static_cast<std::size_t>(fields.rend() - found) - 1;
}

}  // namespace

CDBLanguages::CDBLanguages(platform::Registry& registry, QObject* parent)
    : QObject(parent), registry_(registry) {}

CDBLanguages::~CDBLanguages() = default;

void CDBLanguages::Init(ado::Recordset& texts, ado::Recordset& languages,
                        const QString& projectPath) {
    const Closing closeTexts(texts);
    const Closing closeLanguages(languages);
    projectPath_ = projectPath;
    languages_.clear();
    try {
        interfaceLanguage_ =
            registry_.ReadDword(MResources::kStudioKey, u"LCID", platform::kLcidGerman);
    } catch (const platform::Error& error) {
        // The texts of the interface have reported it; a project has its languages all the same.
        qCWarning(logLanguages, "%s", error.what());
    }
    if (languages.IsBOF() && languages.IsEOF()) return;
    try {
        for (languages.MoveFirst(); !languages.IsEOF(); languages.MoveNext()) {
            AddLanguage(texts, languages);
        }
    } catch (...) {
        languages_.clear();
        throw;
    }
}

namespace {

/// A project without the column has its languages all the same.
ado::Value ValueOrNull(const ado::Recordset& rows, std::string_view column) {
    for (std::size_t i = 0; i < rows.Fields().size(); ++i) {
        if (rows.Fields()[i].name == column) return rows.Get(i);
    }
    return ado::Null();
}

}  // namespace

void CDBLanguages::AddLanguage(const ado::Recordset& texts, const ado::Recordset& languages) {
    const std::int32_t number = ado::ToLong(languages.Get("LCID"));
    const auto lcid = static_cast<platform::Lcid>(number);
    if (number == 0 || Item(lcid) != nullptr) {
        qCWarning(logLanguages, "language %d: no number, or a second record; left out", number);
        return;
    }
    CDBLanguage language;
    language.lcid = lcid;
    language.textColumn = TextColumn(texts, project::LanguageColumn(number));
    language.keyboardLayout = ValueOrNull(languages, "kbLayout");
    language.font = StringToFont(ado::ToText(ValueOrNull(languages, "Font")));
    language.displayName = platform::LanguageName(lcid, texts::InterfaceLanguage());
    if (language.displayName.isEmpty()) language.displayName = QString::number(number);
    languages_.push_back(std::move(language));
}

QFont CDBLanguages::StringToFont(QStringView text) {
    const FontString stored = ParseFontString(text);
    QFont font;
    if (!stored.name.isEmpty()) font.setFamily(stored.name);
    if (stored.size > 0 && stored.size <= kLargestSize) font.setPointSizeF(stored.size);
    if (stored.weight >= kLightest && stored.weight <= kHeaviest) {
        font.setWeight(static_cast<QFont::Weight>(static_cast<int>(stored.weight)));
    }
    // Bold is bold, even where the weight has been left at that of normal letters.
    if (stored.bold && !font.bold()) font.setBold(true);
    font.setItalic(stored.italic);
    font.setStrikeOut(stored.strikethrough);
    font.setUnderline(stored.underline);
    return font;
}

void CDBLanguages::InitLanguageComboBox(QComboBox& combo, platform::Lcid lcid) {
    if (combo_ != &combo) {
        if (combo_ != nullptr) combo_->disconnect(this);
        combo_ = &combo;
        connect(&combo, &QComboBox::activated, this, &CDBLanguages::cmbLanguage_Click);
    }
    const QSignalBlocker blocker(combo);
    combo.clear();
    for (const CDBLanguage& language : languages_) {
        combo.addItem(language.displayName, language.lcid);
    }
    combo.setCurrentIndex(combo.findData(lcid));
    current_ = Item(lcid) != nullptr ? lcid : 0;
}

void CDBLanguages::cmbLanguage_Click(int index) {
    const CDBLanguage* chosen = Item(combo_->itemData(index).toUInt());
    if (chosen == nullptr || chosen->lcid == current_) return;
    current_ = chosen->lcid;
    const CDBLanguage language = *chosen;  // who hears of it may load the project anew
    emit LanguageChanged(language);
}

const CDBLanguage* CDBLanguages::Item(platform::Lcid lcid) const {
    const auto found = std::find_if(
        begin(), end(), [lcid](const CDBLanguage& language) { return language.lcid == lcid; });
    return found == end() ? nullptr : &*found;
}

platform::Lcid CDBLanguages::StartLanguage(std::optional<platform::Lcid> stored) const {
    if (stored && Item(*stored) != nullptr) return *stored;
    if (Item(interfaceLanguage_) != nullptr) return interfaceLanguage_;
    return languages_.empty() ? 0 : languages_.front().lcid;
}

QString CDBLanguages::ProjectLanguage() const {
    try {
        return platform::ProfileFile(projectPath_).Read(u"Global", u"LCID");
    } catch (const platform::Error& error) {
        // A project is a database; only one that is small enough is looked through for the key.
        qCInfo(logLanguages, "%s", error.what());
        return {};
    }
}
