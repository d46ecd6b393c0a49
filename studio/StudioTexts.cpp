#include "studio/StudioTexts.h"

#include <array>
#include <cstddef>

namespace studio {
namespace {

struct Row {
    Text text;
    const char* german;
    const char* english;
};

// In the order of the enumeration; the check below holds that.
constexpr Row kTexts[] = {
    {Text::StudioTitle, "Korvala Studio", "Korvala Studio"},
    {Text::ReadOnlyProject, "%1 [schreibgeschützt]", "%1 [read only]"},
    {Text::MenuFile, "&Datei", "&File"},
    {Text::FileNew, "&Neues Projekt...", "&New project..."},
    {Text::FileNewTip, "Ein neues Projekt anlegen", "Create a new project"},
    {Text::FileOpen, "Ö&ffnen...", "&Open..."},
    {Text::FileOpenTip, "Ein Projekt öffnen", "Open a project"},
    {Text::FileRecent, "&Zuletzt geöffnet", "&Recent projects"},
    {Text::FileRecentNone, "(keine)", "(none)"},
    {Text::FileRecentClear, "Liste &leeren", "&Clear list"},
    {Text::FileRecentMissing, "%1 ist zurzeit nicht vorhanden", "%1 is not there at present"},
    {Text::FileClose, "Projekt &schließen", "&Close project"},
    {Text::FileCloseTip, "Das offene Projekt schließen", "Close the open project"},
    {Text::FileQuit, "&Beenden", "&Quit"},
    {Text::MenuView, "&Ansicht", "&View"},
    {Text::ViewTree, "&Projektbaum", "&Project tree"},
    {Text::ViewEditor, "&Editor", "&Editor"},
    {Text::MenuSettings, "&Einstellungen", "&Settings"},
    {Text::SettingsLanguage, "&Sprache der Oberfläche", "Interface &language"},
    {Text::LanguageTip, "Ein offenes Projekt wird dabei neu geladen",
     "An open project is loaded again"},
    {Text::MenuHelp, "&Hilfe", "&Help"},
    {Text::HelpAddIns, "&Add-Ins...", "Add-&ins..."},
    {Text::HelpAddInsTip, "Geladene Add-Ins und Fehler beim Laden",
     "Add-ins that are loaded, and failures to load"},
    {Text::HelpAbout, "&Info...", "&About..."},
    {Text::AboutTitle, "Info zu Korvala Studio", "About Korvala Studio"},
    {Text::AboutBody,
     "<h3>Korvala Studio %1</h3><p>Öffnet Projekte der Prozessvisualisierung und führt die "
     "Editoren aus, die als Add-Ins vorliegen.</p>",
     "<h3>Korvala Studio %1</h3><p>Opens process visualisation projects and runs the editors "
     "that come as add-ins.</p>"},
    {Text::TreeName, "Projektbaum", "Project tree"},
    {Text::EditorAreaName, "Editorbereich", "Editor area"},
    {Text::EmptyTitle, "Kein Projekt geöffnet", "No project is open"},
    {Text::EmptyHint,
     "Öffnen Sie eine Projektdatei (*.kvs), oder ziehen Sie sie auf dieses Fenster.",
     "Open a project file (*.kvs), or drop one on this window."},
    {Text::EmptyOpen, "&Projekt öffnen...", "&Open project..."},
    {Text::EmptyRecent, "Zuletzt geöffnet", "Recent projects"},
    {Text::NothingOpenTitle, "Kein Editor geöffnet", "No editor is open"},
    {Text::NothingOpenHint, "Wählen Sie im Projektbaum, was Sie bearbeiten möchten.",
     "Choose in the project tree what you want to edit."},
    {Text::NoAddInsHint,
     "Es ist kein Add-In geladen, daher gibt es nichts zu bearbeiten. Mehr dazu unter "
     "Hilfe > Add-Ins.",
     "No add-in is loaded, so there is nothing to edit. See Help > Add-ins."},
    {Text::NewTitle, "Neues Projekt", "New project"},
    {Text::NewFile, "&Projektdatei:", "&Project file:"},
    {Text::NewBrowse, "&Durchsuchen...", "&Browse..."},
    {Text::NewLanguages, "&Sprachen der Texte:", "&Languages of the texts:"},
    {Text::NewOk, "&Anlegen", "&Create"},
    {Text::OpenTitle, "Projekt öffnen", "Open project"},
    {Text::OpenFilter, "Projekte (*.kvs *.KVS);;Alle Dateien (*)",
     "Projects (*.kvs *.KVS);;All files (*)"},
    {Text::StatusReady, "Bereit", "Ready"},
    {Text::StatusOpened, "Projekt %1 geöffnet", "Project %1 opened"},
    {Text::StatusOpenedReadOnly,
     "Projekt %1 geöffnet. Es ist schreibgeschützt: Sie können es ansehen, aber nicht ändern.",
     "Project %1 opened. It is read only: you can look at it, but not change it."},
    {Text::StatusClosed, "Projekt geschlossen", "Project closed"},
    {Text::StatusBusy, "Ein Editor arbeitet noch; bitte beenden Sie zuerst seinen Dialog",
     "An editor is still at work; please finish its dialog first"},
    {Text::StatusAddInFailed, "Add-In %1: %2. Mehr dazu unter Hilfe > Add-Ins.",
     "Add-in %1: %2. See Help > Add-ins."},
    {Text::StatusAddInError, "Fehler im Add-In %1 bei %2: %3", "Error in add-in %1, %2: %3"},
    {Text::StatusLanguage, "Sprache der Oberfläche: Deutsch", "Interface language: English"},
    {Text::ErrorNotFound, "Die Projektdatei wurde nicht gefunden:\n%1",
     "The project file was not found:\n%1"},
    {Text::ErrorNoFile, "Das ist keine Datei, sondern ein Ordner oder Gerät:\n%1",
     "This is a folder or a device, not a file:\n%1"},
    {Text::ErrorNotReadable, "Die Projektdatei kann nicht gelesen werden (%2):\n%1",
     "The project file cannot be read (%2):\n%1"},
    {Text::ErrorEmptyFile, "Die Projektdatei ist leer:\n%1", "The project file is empty:\n%1"},
    {Text::ErrorNoDatabase, "Die Datei ist keine Projektdatenbank:\n%1",
     "The file is not a project database:\n%1"},
    {Text::ErrorExtension, "Projektdateien haben die Endung .kvs:\n%1",
     "Project files have the extension .kvs:\n%1"},
    {Text::ErrorUnknownName,
     "Ein Projekt mit dem Namen \"%1\" ist nicht eingetragen, und eine Projektdatei (.kvs) "
     "dieses Namens wurde nicht angegeben.",
     "No project named \"%1\" is registered, and no project file (.kvs) of that name was given."},
    {Text::ErrorBackslash,
     "Der Pfad enthält einen umgekehrten Schrägstrich und kann deshalb nicht verwendet "
     "werden:\n%1",
     "The path contains a backslash and can therefore not be used:\n%1"},
    {Text::ErrorExists,
     "Unter diesem Namen gibt es schon etwas. Es wird nicht überschrieben; bitte wählen Sie einen "
     "anderen Namen:\n%1",
     "There is something of this name already. It will not be overwritten; please choose another "
     "name:\n%1"},
    {Text::ErrorNotMade, "Das Projekt konnte nicht angelegt werden:\n%1\n\n%2",
     "The project could not be created:\n%1\n\n%2"},
    {Text::ErrorLanguage, "Die Sprache konnte nicht gespeichert werden:\n%1",
     "The language could not be saved:\n%1"},
    {Text::ErrorRegistryFile, "Die Registrierungsdatei gibt es nicht: %1",
     "The registry file does not exist: %1"},
    {Text::AddInColumn, "Add-In", "Add-in"},
    {Text::AddInFileColumn, "Datei", "File"},
    {Text::AddInStateColumn, "Zustand", "State"},
    {Text::AddInLoaded, "geladen", "loaded"},
    {Text::AddInNoLibrary, "nicht geladen: keine Bibliothek für dieses Programm",
     "not loaded: no library for this program"},
    {Text::AddInNoName, "nicht geladen: die Bibliothek nennt keine ProgID",
     "not loaded: the library names no ProgID"},
    {Text::AddInNameTaken, "nicht geladen: ein anderes Add-In hat dieselbe ProgID",
     "not loaded: another add-in has the same ProgID"},
    {Text::AddInFailed, "nicht geladen: Fehler beim Start des Add-Ins",
     "not loaded: error at the start of the add-in"},
    {Text::VariablesTitle, "Variable auswählen", "Choose variable"},
    {Text::VariablesSearch, "&Suchen:", "&Search:"},
    {Text::VariablesSearchHint, "Name, Typ, Einheit oder Kommentar", "Name, type, unit or comment"},
    {Text::VariablesTree, "Strukturen und Variablen", "Structures and variables"},
    {Text::VariableColumn, "Variable", "Variable"},
    {Text::VariableTypeColumn, "Typ", "Type"},
    {Text::VariableUnitColumn, "Einheit", "Unit"},
    {Text::VariableCommentColumn, "Kommentar", "Comment"},
    {Text::VariablesNoStructure, "(ohne Struktur)", "(no structure)"},
    {Text::VariablesReading, "%1 Variablen, weitere werden gelesen...",
     "%1 variables, reading more..."},
    {Text::VariablesCount, "%1 Variablen", "%1 variables"},
    {Text::VariablesFound, "%1 von %2 Variablen", "%1 of %2 variables"},
    {Text::VariablesNone, "Dieses Projekt enthält keine Variablen.",
     "This project contains no variables."},
    {Text::VariablesFailed, "Die Variablen können nicht gelesen werden: %1",
     "The variables cannot be read: %1"},
    {Text::VariablesUnreadable, "Nicht lesbare Zeilen: %1", "Rows that cannot be read: %1"},
    {Text::Ok, "OK", "OK"},
    {Text::Cancel, "Abbrechen", "Cancel"},
    {Text::Close, "S&chließen", "&Close"},
};

constexpr bool InEnumOrder() {
    std::size_t expected = 0;
    for (const Row& row : kTexts) {
        if (static_cast<std::size_t>(row.text) != expected++) return false;
    }
    return expected == static_cast<std::size_t>(Text::Close) + 1;
}
static_assert(InEnumOrder(), "one row for each text, in the order of the enumeration");

}  // namespace

QString StudioTexts::operator()(Text text) const {
    const Row& row = kTexts[static_cast<std::size_t>(text)];
    return QString::fromUtf8(lcid_ == kEnglish ? row.english : row.german);
}

}  // namespace studio
