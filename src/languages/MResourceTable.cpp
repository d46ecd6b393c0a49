#include "languages/MResourceTable.h"

namespace MResourceTable {
namespace {

constexpr Entry kWords[] = {
    {10, u"OK", u"OK"},         {11, u"Abbrechen", u"Cancel"}, {12, u"&Hilfe", u"&Help"},
    {20, u"nein", u"false"},    {21, u"ja", u"true"},          {30, u"Strg+", u"Ctrl+"},
    {31, u"Umsch+", u"Shift+"}, {32, u"Alt+", u"Alt+"},
};

// clang-format off: one text a line, however long
constexpr Entry kAll[] = {
    {10, u"OK", u"OK"},
    {11, u"Abbrechen", u"Cancel"},
    {12, u"&Hilfe", u"&Help"},

    // Columns of the trend split
    {101, u"Laufzeitname", u"Runtime Name"},
    {102, u"Trendvariable", u"Trend Variable"},
    {105, u"ErsatzMax", u"Substitution Value Maximum"},
    {106, u"ErsatzMin", u"Substitution Value Minimum"},
    {107, u"Ersatzwert Fehler", u"Error Substitution Value"},
    {108, u"Hysterese", u"Hysteresis"},
    {109, u"HystereseModus", u"Hysteresis Mode"},
    {110, u"Normierungsfaktor", u"Factor"},
    {113, u"Filtertiefe", u"Filter Depth"},
    {114, u"Einheit", u"Unit"},
    {115, u"AnzeigeMax", u"Display Maximum"},
    {116, u"AnzeigeMin", u"Display Minimum"},
    {117, u"Oberes Toleranzband", u"Upper Tolerance Line"},
    {118, u"Unteres Toleranzband", u"Lower Tolerance Line"},
    {119, u"Kurvenfarbe", u"Curve Color"},
    {121, u"Kurvenstil", u"Curve Style"},
    {122, u"Farbe oberes Toleranzband", u"Upper Tolerance Line Color"},
    {123, u"Farbe unteres Toleranzband", u"Lower Tolerance Line Color"},
    {124, u"Ausgabekonfiguration", u"Output Configuration"},
    {125, u"Ausgabeart", u"Output Type"},
    {126, u"Sample Maximum", u"Maximum visual measuring Data"},
    {127, u"Einheitentabelle", u"Unit table"},
    {128, u"Kommentar", u"Comment"},

    // Main window. The blanks inside set the shortcuts apart.
    {501, u"Archiv Editor", u"Archive Editor"},
    {502, u"&Archive", u"&Archive"},
    {503, u"&Neu                    F8", u"&New                 F8"},
    {504, u"&Bearbeiten         F9", u"&Edit                  F9"},
    {505, u"&Löschen    Strg+Entf", u"&Delete     Ctrl+Del"},
    {506, u"&Trends", u"&Trends"},
    {507, u"&Neu                        F8", u"&New                 F8"},
    {508, u"&Bearbeiten              F9", u"&Edit                  F9"},
    {509, u"&Löschen       Strg+Entf", u"&Delete           Ctrl+Del"},
    {510, u"E&xtras", u"E&xtras"},
    {511, u"&Statistik", u"&Statistik"},
    {512, u"Report", u"Report"},
    {513, u"&Ansicht aktualisieren", u"&Actualize Database Connection"},
    {515, u"Optionen", u"Options"},
    {516, u"Editor anzeigen", u"Show Editor"},
    {517, u"Func:", u"Func:"},
    {518, u"Archive:", u"Archives:"},
    {519, u"Trends:", u"Trends:"},
    {550, u"Archive", u"Archives"},

    // Start-up and connection
    {901, u"angegebene Projektdatenbank nicht gefunden", u"Choosed Database not found"},
    {902, u"Korvala Datenbank oder Schnittstelle wurde nicht gefunden",
     u"Korvala Databas of Connection not found"},
    {903, u"Fehler beim Laden des Formulars 'Indextexteditor'",
     u"Error: Loading Form 'Indextexteditor'"},
    {904, u"Fehler beim Positionieren der Formularelemente", u"Error: Positioning Form elements"},
    {905, u"Fehler beim Initialisieren des AddInBaumes", u"Error: Initialize AddIn Tree"},
    {906, u"Fehler beim Initialisieren der Baumansicht aus der Datenbank",
     u"Error: Initialize Treeview from Database"},
    {907, u"Fehler beim Initialiseren der Trendtabelle", u"Error. Initializing Trend Table"},

    {1001, u"Die Hilfedatei '<file>' (Thema <topic>) kann nicht angezeigt werden.",
     u"The help file '<file>' (topic <topic>) cannot be shown."},
    {1002, u"... und <n> weitere", u"... and <n> more"},

    // Property dialogs
    {1100, u"Variable auswählen", u"Choose variable"},
    {1101, u"Ordner auswählen", u"Choose folder"},
    {1102, u"Text bearbeiten", u"Edit text"},
    {1103, u"...", u"..."},
    {1104, u"<n> von <max> Zeichen", u"<n> of <max> characters"},
};
// clang-format on

}  // namespace

const std::span<const Entry> kCommonWords(kWords);
const std::span<const Entry> kTexts(kAll);

}  // namespace MResourceTable
