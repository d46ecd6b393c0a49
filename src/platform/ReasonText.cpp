#include "platform/ReasonText.h"

#include <algorithm>
#include <QCoreApplication>
#include <QVariant>
#include <string_view>

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;
using reasons::Cause;

// Kept with the application: the host and each add-in have a copy of this library.
constexpr const char* kInterfaceLanguage = "korvalaInterfaceLanguage";

struct Row {
    Cause cause;
    std::u16string_view german;
    std::u16string_view english;
};

// <file>, <name> and <limit> are replaced. What stands in brackets is left out where one of them is
// not known.
// clang-format off: one text a line, however long
constexpr Row kTexts[] = {
    {Cause::Unknown, u"Das ist nicht gelungen. Die Ursache steht unter „Details“.",
     u"This has not worked. The cause is under \"Details\"."},
    {Cause::FileMissing,
     u"Die Datei '<file>' wurde nicht gefunden. Prüfen Sie, ob sie verschoben oder umbenannt wurde "
     u"oder ihr Laufwerk nicht verbunden ist.",
     u"The file '<file>' was not found. See whether it has been moved or renamed, or its drive is "
     u"not connected."},
    {Cause::FileUnreadable,
     u"Die Datei '<file>' darf von Ihnen nicht gelesen werden. Lassen Sie sich die Rechte an der "
     u"Datei und ihrem Ordner geben.",
     u"You are not allowed to read the file '<file>'. Ask for the rights to the file and its "
     u"folder."},
    {Cause::FileReadOnly,
     u"Die Datei '<file>' ist schreibgeschützt; es wurde nichts gespeichert. Geben Sie der Datei "
     u"und ihrem Ordner Schreibrechte, und versuchen Sie es noch einmal.",
     u"The file '<file>' is read only; nothing has been stored. Allow the file and its folder to "
     u"be written, and try again."},
    {Cause::FileInUse,
     u"Die Datei '<file>' ist durch ein anderes Programm gesperrt. Versuchen Sie es in einem "
     u"Augenblick noch einmal, oder schließen Sie das andere Programm.",
     u"The file '<file>' is locked by another program. Try again in a moment, or close the other "
     u"program."},
    {Cause::FileFull,
     u"Die Datei '<file>' kann nicht größer werden; es wurde nichts gespeichert. Der Datenträger "
     u"ist voll, oder die Datei hat ihre Höchstgröße erreicht. Schaffen Sie Platz, oder verdichten "
     u"Sie die Datei mit 'kvs compact'.",
     u"The file '<file>' cannot grow; nothing has been stored. The disk is full, or the file has "
     u"reached its largest size. Make room, or compact the file with 'kvs compact'."},
    {Cause::DeviceFault,
     u"Beim Lesen oder Schreiben der Datei '<file>' meldet das System einen Fehler. Prüfen Sie den "
     u"Datenträger und die Verbindung zu ihm, und versuchen Sie es noch einmal.",
     u"The system reports an error while the file '<file>' is read or written. See to the disk and "
     u"the connection with it, and try again."},
    {Cause::FileDamaged,
     u"Die Datei '<file>' ist beschädigt. Was genau, zeigt 'kvs check'; ersetzen Sie die Datei "
     u"durch eine Sicherung, wenn Sie eine haben.",
     u"The file '<file>' is damaged. 'kvs check' shows where; put a backup in its place if you "
     u"have one."},
    {Cause::FileReplaced,
     u"Die Datei '<file>' wurde inzwischen durch eine andere ersetzt oder von einem anderen "
     u"Programm umgebaut. Öffnen Sie das Projekt noch einmal.",
     u"The file '<file>' has been replaced by another one meanwhile, or another program has "
     u"changed its tables. Open the project again."},
    {Cause::NotAProject,
     u"Die Datei '<file>' ist keine Projektdatei, oder sie ist unvollständig. Wählen Sie eine "
     u"andere Datei, oder holen Sie sie aus einer Sicherung zurück.",
     u"The file '<file>' is no project file, or it is not complete. Choose another file, or "
     u"restore it from a backup."},
    {Cause::Unsupported,
     u"Das geht mit der Datei '<file>' nicht. Sie ist verschlüsselt, von einer anderen Version "
     u"oder von einer Form, die nicht unterstützt wird; welche, steht unter „Details“.",
     u"The file '<file>' does not allow this. It is encrypted, of another version, or of a form "
     u"that is not supported; which, is under \"Details\"."},
    {Cause::Password,
     u"Die Datei '<file>' ist durch ein Kennwort geschützt. Entfernen Sie es mit dem Programm, mit "
     u"dem es vergeben wurde.",
     u"The file '<file>' is protected by a password. Remove it with the program that it was given "
     u"with."},
    {Cause::TableMissing,
     u"In der Datei[ '<file>'] fehlt die Tabelle '<name>'. Sie ist wohl keine Projektdatei; wählen "
     u"Sie eine andere.",
     u"The table '<name>' is missing in the file[ '<file>']. It is probably no project file; "
     u"choose another one."},
    {Cause::ColumnMissing,
     u"In der Projektdatei[ '<file>'] fehlt die Spalte '<name>'. Sie ist wohl von einer anderen "
     u"Version.",
     u"The column '<name>' is missing in the project file[ '<file>']. It is probably of another "
     u"version."},
    {Cause::RowChanged,
     u"Ein anderes Programm hat diese Zeile inzwischen geändert oder gelöscht; es wurde nichts "
     u"gespeichert. Sehen Sie sich den neuen Stand an, und ändern Sie ihn, wenn nötig.",
     u"Another program has changed or deleted this row meanwhile; nothing has been stored. Look at "
     u"how it is now, and change it if need be."},
    {Cause::RowGone,
     u"Diese Zeile gibt es nicht mehr; ein anderes Programm hat sie wohl gelöscht. Lesen Sie das "
     u"Projekt neu ein (Extras).",
     u"This row is no longer there; another program has probably deleted it. Read the project "
     u"again (Extras)."},
    {Cause::TextTooLong,
     u"Der Text ist zu lang: Das Feld '<name>' fasst höchstens <limit> Zeichen. Kürzen Sie ihn.",
     u"The text is too long: the field '<name>' takes <limit> characters at most. Shorten it."},
    {Cause::NumberTooLarge,
     u"Die Zahl liegt außerhalb dessen, was das Feld '<name>' aufnehmen kann. Geben Sie eine "
     u"andere ein.",
     u"The number is out of the range of the field '<name>'. Enter another one."},
    {Cause::ValueTooLarge,
     u"Der Eintrag ist zu groß für die Datei[ '<file>']; es wurde nichts gespeichert. Kürzen Sie "
     u"seine Texte.",
     u"The entry is too large for the file[ '<file>']; nothing has been stored. Shorten its "
     u"texts."},
    {Cause::WrongType, u"Der Wert passt nicht zu dem Feld[ '<name>']. Geben Sie einen anderen ein.",
     u"The value does not fit the field[ '<name>']. Enter another one."},
    {Cause::ValueDouble,
     u"Es gibt schon eine Zeile mit demselben Wert, der nur einmal vorkommen darf; es wurde nichts "
     u"gespeichert. Wählen Sie einen anderen.",
     u"There is a row already with the same value, which may be there only once; nothing has been "
     u"stored. Choose another one."},
    {Cause::ValueRequired,
     u"Ein Feld, das einen Wert haben muss, ist leer; es wurde nichts gespeichert. Welches, steht "
     u"unter „Details“.",
     u"A field that must have a value is empty; nothing has been stored. Which one, is under "
     u"\"Details\"."},
    {Cause::RowsRelated,
     u"Zeilen einer anderen Tabelle hängen davon ab; es wurde nichts gespeichert. Welche, steht "
     u"unter „Details“.",
     u"Rows of another table depend on it; nothing has been stored. Which ones, is under "
     u"\"Details\"."},
    {Cause::PathUnusable,
     u"Der Pfad '<file>' kann nicht verwendet werden. Prüfen Sie, ob es den Ordner gibt und der "
     u"Name zu einer Datei gehört.",
     u"The path '<file>' cannot be used. See whether the folder exists and the name is that of a "
     u"file."},
    {Cause::OutOfMemory,
     u"Der Arbeitsspeicher reicht nicht aus. Schließen Sie andere Programme, und versuchen Sie es "
     u"noch einmal.",
     u"There is not enough memory. Close other programs, and try again."},
};
// clang-format on

struct CheckRow {
    std::u16string_view german;
    std::u16string_view english;
};

// In the order of the enumeration.
// clang-format off: one text a line, however long
constexpr CheckRow kCheckTexts[] = {
    {u"Datei &prüfen", u"&Check file"},
    {u"Prüfung der Datei", u"Check of the file"},
    {u"Die Prüfung der Datei '<file>' hat keinen Fehler gefunden.",
     u"The check of the file '<file>' has found no fault."},
    {u"Die Prüfung der Datei '<file>' hat Fehler gefunden: <n>. Sie stehen unter „Details“. Was "
     u"davon nicht betroffen ist, kann gelesen werden; ersetzen Sie die Datei durch eine "
     u"Sicherung, wenn Sie eine haben.",
     u"The check of the file '<file>' has found faults: <n>. They are under \"Details\". What they "
     u"do not concern can be read; put a backup in its place if you have one."},
};
// clang-format on

constexpr bool InEnumOrder() {
    std::size_t expected = 0;
    for (const Row& row : kTexts) {
        if (static_cast<std::size_t>(row.cause) != expected++) return false;
    }
    return expected == static_cast<std::size_t>(Cause::OutOfMemory) + 1;
}
static_assert(InEnumOrder(), "one row for each cause, in the order of the enumeration");

/// What each placeholder stands for; empty where it is not known.
QString ValueOf(QStringView placeholder, const reasons::Reason& reason) {
    if (placeholder == u"file") return QString::fromStdString(reason.file);
    if (placeholder == u"name") return QString::fromStdString(reason.name);
    return reason.limit == 0 ? QString() : QString::number(reason.limit);
}

/// Puts the values in, one pass: a value that looks like a placeholder is none.
QString Filled(QStringView text, const reasons::Reason& reason, bool& complete) {
    QString filled;
    qsizetype at = 0;
    while (at < text.size()) {
        if (text[at] == u'[') {
            const qsizetype end = text.indexOf(u']', at);
            bool known = true;
            const QString part = Filled(text.mid(at + 1, end - at - 1), reason, known);
            if (known) filled += part;
            at = end + 1;
        } else if (text[at] == u'<') {
            const qsizetype end = text.indexOf(u'>', at);
            const QString value = ValueOf(text.mid(at + 1, end - at - 1), reason);
            complete = complete && !value.isEmpty();
            filled += value;
            at = end + 1;
        } else {
            filled += text[at++];
        }
    }
    return filled;
}

}  // namespace

void SetInterfaceLanguage(Lcid lcid) {
    if (qApp == nullptr || (lcid != kLcidGerman && lcid != kLcidEnglish)) return;
    qApp->setProperty(kInterfaceLanguage, lcid);
}

Lcid InterfaceLanguage() {
    const QVariant set = qApp != nullptr ? qApp->property(kInterfaceLanguage) : QVariant();
    return set.isValid() ? set.toUInt() : kLcidGerman;
}

QString TextOf(CheckText text) {
    const CheckRow& row = kCheckTexts[static_cast<std::size_t>(text)];
    return QStringView(InterfaceLanguage() == kLcidEnglish ? row.english : row.german).toString();
}

QString ReasonText(const reasons::Reason& reason) {
    const Row& row = kTexts[static_cast<std::size_t>(reason.cause)];
    bool complete = true;
    return Filled(InterfaceLanguage() == kLcidEnglish ? row.english : row.german, reason, complete);
}

}  // namespace platform
