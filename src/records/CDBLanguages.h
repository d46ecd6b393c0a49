#pragma once

#include <cstddef>
#include <optional>
#include <QFont>
#include <QObject>
#include <QPointer>
#include <QString>
#include <vector>

#include "ado/Value.h"
#include "platform/Locale.h"

class QComboBox;

namespace ado {
class Recordset;
}
namespace platform {
class Registry;
}

/// One language of the project.
struct CDBLanguage {
    platform::Lcid lcid = 0;
    /// Position, among the fields of the index texts, of the column with its texts. None where the
    /// project has no such column: its texts are then empty and cannot be edited.
    std::optional<std::size_t> textColumn;
    QFont font;
    ado::Value keyboardLayout;  // as the project stores it
    /// Its name in the language of the interface; its number where nobody knows a name.
    QString displayName;
};

/// The languages of a project's texts, which of them is being edited, and the combo box in which
/// the user chooses it. What language the interface speaks is another matter: see MResources.
///
/// Made by the editor window, filled by Init whenever the project is loaded. For the
/// user-interface thread.
class CDBLanguages : public QObject {
    Q_OBJECT
public:
    /// `registry` is borrowed and must outlive the languages.
    explicit CDBLanguages(platform::Registry& registry, QObject* parent = nullptr);
    ~CDBLanguages() override;

    /// Takes the languages from the project: `texts` are its index texts, `languages` its table of
    /// languages, both open, and both closed afterwards, even when it fails. Keeps the order of
    /// the table; a second record of a language, and one without a number, is left out. No record
    /// gives no language. The bound combo box stays as it was until InitLanguageComboBox.
    ///
    /// Throws ado::AdoError when a record cannot be read; there are then no languages.
    void Init(ado::Recordset& texts, ado::Recordset& languages, const QString& projectPath);

    /// The font that a project stores as text (see FontString.h). A size or weight that no font
    /// can have leaves the application's own. Characters are Unicode, so the charset means
    /// nothing here.
    [[nodiscard]] static QFont StringToFont(QStringView text);

    /// Binds the combo box, in place of the one before, and fills it: the languages in their
    /// order, names as texts, LCIDs as data. The entry of `lcid` becomes the selection and the
    /// current language; none when there is no such language. Not reported by LanguageChanged.
    void InitLanguageComboBox(QComboBox& combo, platform::Lcid lcid);

    /// The language that is being edited; null when there is none. Valid until the next Init.
    [[nodiscard]] const CDBLanguage* Current() const { return Item(current_); }

    /// The language to begin with: the one that has been stored for the user, when the project has
    /// it; else the interface's, else the project's first; 0 when it has none.
    [[nodiscard]] platform::Lcid StartLanguage(std::optional<platform::Lcid> stored) const;

    /// The project's own language as its file names it in section "Global", key "LCID"; empty when
    /// it does not.
    [[nodiscard]] QString ProjectLanguage() const;
    /// The studio's interface language, as it was at Init.
    [[nodiscard]] platform::Lcid InterfaceLanguage() const noexcept { return interfaceLanguage_; }

    [[nodiscard]] std::size_t Count() const noexcept { return languages_.size(); }
    /// Null when the project has no such language. Valid until the next Init.
    [[nodiscard]] const CDBLanguage* Item(platform::Lcid lcid) const;
    [[nodiscard]] auto begin() const noexcept { return languages_.begin(); }
    [[nodiscard]] auto end() const noexcept { return languages_.end(); }

signals:
    /// The user has picked another language in the combo box; it is current already.
    void LanguageChanged(const CDBLanguage& language);

private slots:
    void cmbLanguage_Click(int index);

private:
    void AddLanguage(const ado::Recordset& texts, const ado::Recordset& languages);

    platform::Registry& registry_;
    std::vector<CDBLanguage> languages_;
    QPointer<QComboBox> combo_;
    QString projectPath_;
    platform::Lcid interfaceLanguage_ = platform::kLcidGerman;
    platform::Lcid current_ = 0;
};
