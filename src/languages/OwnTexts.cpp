#include "languages/detail/TextOrder.h"
#include "languages/MResourceTable.h"

namespace MResourceTable {
namespace {

// clang-format off: one text a line, however long
constexpr Entry kAll[] = {
    {1001, u"Die Hilfedatei '<file>' (Thema <topic>) kann nicht angezeigt werden.",
     u"The help file '<file>' (topic <topic>) cannot be shown."},
    {1002, u"Nicht lesbare Zeilen: <n>", u"Rows that cannot be read: <n>"},

    // Property dialogs
    {1100, u"Text bearbeiten", u"Edit text"},
    {1101, u"...", u"..."},
    {1102, u"<n> von <max> Zeichen", u"<n> of <max> characters"},
    {1103, u"Speicherart", u"Saving"},
    {1104, u"Bedeutung", u"Meaning"},
    {1105, u"'<text>' ist zu lang: Dieses Feld fasst höchstens <max> Zeichen.",
     u"'<text>' is too long: this field holds <max> characters at most."},

    {1106,
     u"Ein anderes Programm hat diese Zeile inzwischen geändert. Was Sie eingegeben haben, steht "
     u"noch im Dialog: OK speichert es, Abbrechen lässt die Werte des anderen Programms stehen.",
     u"Another program has changed this row meanwhile. What you have entered is still in the "
     u"dialog: OK stores it, Cancel leaves the values of the other program."},
    {1107,
     u"Ein anderes Programm hat diese Zeile inzwischen gelöscht. Was Sie eingegeben haben, steht "
     u"noch im Dialog, kann aber nicht mehr gespeichert werden.",
     u"Another program has deleted this row meanwhile. What you have entered is still in the "
     u"dialog but can no longer be stored."},

    // What the settings of an archive mean
    {1110, u"1 Datei je Jahr", u"1 file a year"},
    {1111, u"1 Datei je Monat", u"1 file a month"},
    {1112, u"1 Datei je Woche", u"1 file a week"},
    {1113, u"1 Datei je Tag", u"1 file a day"},
    {1114, u"1 Datei je Stunde", u"1 file an hour"},
    {1115, u"1 Datei je Minute", u"1 file a minute"},
    {1116, u"1 Datei je Sekunde", u"1 file a second"},
    {1117, u"neue Datei auf eine Triggervariable", u"a new file on a trigger variable"},
    {1118, u"neue Datei auf <variable>", u"a new file on <variable>"},
    {1119, u"neue Datei nach <n> Datensätzen", u"a new file after <n> records"},
    {1120, u"eine einzige Datei", u"a single file"},
    {1121, u"1 Datei", u"1 file"},
    {1122, u"<n> Dateien", u"<n> files"},
    {1123, u"höchstens <size>", u"at most <size>"},
    {1124, u"<n> Datensätze", u"<n> records"},
    {1125, u"reicht <time> zurück", u"reaches back <time>"},
    {1126, u"im Hauptspeicher", u"in main memory"},
    {1127, u"<n> Prozesszyklen", u"<n> process cycles"},
    {1128, u"<n> ms", u"<n> ms"},
    {1129, u"<n> Sekunde", u"<n> second"},
    {1130, u"<n> Sekunden", u"<n> seconds"},
    {1131, u"<n> Minute", u"<n> minute"},
    {1132, u"<n> Minuten", u"<n> minutes"},
    {1133, u"<n> Stunde", u"<n> hour"},
    {1134, u"<n> Stunden", u"<n> hours"},
    {1135, u"<n> Tag", u"<n> day"},
    {1136, u"<n> Tage", u"<n> days"},
    {1137, u"<n> Jahr", u"<n> year"},
    {1138, u"<n> Jahre", u"<n> years"},
    {1139, u"<n> kB", u"<n> kB"},
    {1140, u"<n> MB", u"<n> MB"},
    {1141, u"<n> GB", u"<n> GB"},

    // Trend dialog: colours and pictures of curves
    {1150, u"Farbe auswählen", u"Choose color"},
    {1151, u"Zuletzt verwendet", u"Recently used"},
    {1152, u"&Weitere Farben...", u"&More colors..."},
    {1153, u"keine Farbe", u"no color"},
    {1154, u"Systemfarbe", u"System color"},
    {1155, u"Rot <r>, Grün <g>, Blau <b>", u"red <r>, green <g>, blue <b>"},
    {1156, u"Rot", u"Red"},
    {1157, u"Orange", u"Orange"},
    {1158, u"Gelb", u"Yellow"},
    {1159, u"Grün", u"Green"},
    {1160, u"Türkis", u"Cyan"},
    {1161, u"Blau", u"Blue"},
    {1162, u"Violett", u"Violet"},
    {1163, u"<hue> (hell)", u"<hue> (light)"},
    {1164, u"<hue> (dunkel)", u"<hue> (dark)"},
    {1165, u"<hue> (sehr dunkel)", u"<hue> (very dark)"},
    {1166, u"Weiß", u"White"},
    {1167, u"Hellgrau", u"Light grey"},
    {1168, u"Dunkelgrau", u"Dark grey"},
    {1169, u"Schwarz", u"Black"},
    {1170, u"Beispielkurve", u"Sample curve"},

    // What fields take
    {1180, u"Dieses Feld nimmt nur diese Zeichen: <keys>",
     u"This field takes these keys only: <keys>"},
    {1181, u"Dieses Feld nimmt diese Zeichen nicht: <keys>",
     u"This field does not take these keys: <keys>"},
    {1182, u"Leerzeichen", u"blank"},
    {1183, u"'<text>' wurde nicht eingefügt.", u"'<text>' has not been pasted."},
    {1184, u"Das Feld fasst höchstens <max> Zeichen.",
     u"The field holds <max> characters at most."},
    {1185, u"'<text>' ist nicht als Ganzes eine Zahl. Gespeichert wird <number>.",
     u"'<text>' is no number as a whole. What is stored is <number>."},
    {1186, u"Dieses Feld nimmt ganze Zahlen. Gespeichert wird <number>.",
     u"This field takes whole numbers. What is stored is <number>."},
    {1187, u"'<text>' ist zu groß für dieses Feld: Es nimmt Zahlen von <smallest> bis <largest>.",
     u"'<text>' is too large for this field: it takes numbers from <smallest> to <largest>."},
    {1188, u"zu groß", u"too large"},
    {1189,
     u"Geben Sie an, nach wie vielen Datensätzen eine neue Datei beginnt, oder wählen Sie ein "
     u"anderes Ereignis.",
     u"Say after how many data records a new file begins, or choose another event."},
    {1190,
     u"Geben Sie die Variable an, die eine neue Datei beginnt, oder wählen Sie ein anderes "
     u"Ereignis.",
     u"Name the variable that begins a new file, or choose another event."},

    // Options dialog
    {1260, u"Spalte anzeigen (Eingabe)", u"Show column (Enter)"},
    {1261, u"Spalte ausblenden (Entf)", u"Hide column (Del)"},
    {1262, u"Nach oben (Strg+Nach-oben)", u"Move up (Ctrl+Up)"},
    {1263, u"Nach unten (Strg+Nach-unten)", u"Move down (Ctrl+Down)"},
    {1264, u"Schriftart auswählen", u"Choose font"},

    // Grid
    {1300, u"aufsteigend sortiert", u"sorted ascending"},
    {1301, u"absteigend sortiert", u"sorted descending"},
    {1302, u"Auswählen ...", u"Choose ..."},
    {1303, u"Aktuelle Zeile", u"Current row"},
    {1304, u"Die Zeile wird bearbeitet", u"The row is being edited"},
    {1305, u"Neue Zeile", u"New row"},

    // Editor window
    {1360, u"Eingrenzen (Strg+F)", u"Narrow (Ctrl+F)"},
    {1361, u"&Kopieren\tStrg+C", u"&Copy\tCtrl+C"},
    {1362, u"&Einfügen\tStrg+V", u"&Paste\tCtrl+V"},
    {1363, u"&Duplizieren\tStrg+D", u"&Duplicate\tCtrl+D"},
    {1364, u"&Namensspalte immer zeigen", u"&Keep name column in view"},
    {1365, u"Befehle", u"Commands"},
    {1366, u"Sprache der Texte", u"Language of the texts"},
    {1367, u"Trends", u"Trends"},
    {1368,
     u"Die Zeile, in der Sie geschrieben haben, wurde von einem anderen Programm gelöscht. Die "
     u"Eingabe '<text>' ist nicht gespeichert.",
     u"The row that you were typing into has been deleted by another program. The text '<text>' "
     u"has not been stored."},
    {1369,
     u"Zeile <row>, Spalte '<column>': '<text>' ist kein gültiger Wert. Es wurde nichts "
     u"eingefügt.",
     u"Row <row>, column '<column>': '<text>' is no valid value. Nothing has been pasted."},
    {1370,
     u"Die Zwischenablage enthält mehrere Zellen. Trends werden eingefügt, wenn in der ersten "
     u"Zeile die Spaltenüberschriften stehen.",
     u"The clipboard holds several cells. Trends are pasted when the first line holds the column "
     u"headings."},
    {1371, u"Spalte '<column>' ist unbekannt. Es wurde nichts eingefügt.",
     u"Column '<column>' is not known. Nothing has been pasted."},
    {1372, u"Trends werden gelöscht ...", u"Deleting trends ..."},
    {1373, u"Trends werden kopiert ...", u"Copying trends ..."},
    {1374, u"Trends werden eingefügt ...", u"Pasting trends ..."},
    {1375, u"Ein anderes Programm hat diese Zeile inzwischen geändert oder gelöscht.",
     u"Another program has changed or deleted this row meanwhile."},
    {1376,
     u"Das Archiv und <n> seiner Trends sind gelöscht. <left> seiner Trends sind noch da und "
     u"gehören zu keinem Archiv mehr.",
     u"The archive and <n> of its trends have been deleted. <left> of its trends are left and "
     u"belong to no archive any more."},
    {1377, u"Zeile <row>, Spalte '<column>': <cause>\n\nEs wurde nichts eingefügt.",
     u"Row <row>, column '<column>': <cause>\n\nNothing has been pasted."},
    {1378, u"<n> Trends sind gelöscht, <left> sind noch da.",
     u"<n> trends have been deleted, <left> are left."},
    {1379, u"1 Trend wird nicht angezeigt, sein Text fehlt",
     u"1 trend is not shown, its text is missing"},
    {1380, u"<n> Trends werden nicht angezeigt, ihre Texte fehlen",
     u"<n> trends are not shown, their texts are missing"},
    {1400, u"Ein anderer Befehl ist noch bei der Arbeit.", u"Another command is still at work."},
    {1401,
     u"Ein neues Archiv entsteht am Knoten \"Archive\" oder in der Liste der Archive: dort F8 "
     u"drücken.",
     u"A new archive is made at the node \"Archives\" or in the list of archives: press F8 there."},
    {1402, u"Kein Archiv ist geöffnet: eines in der Liste oder im Baum anklicken.",
     u"No archive is open: click one in the list or in the tree."},
    {1403, u"Hier ist kein Trend. Ein neuer entsteht mit F8.",
     u"There is no trend here. F8 makes a new one."},
    {1404,
     u"Keine Zeile ist markiert: mit Umschalt+Leertaste oder links am Zeilenrand markieren, dann "
     u"den Befehl wiederholen.",
     u"No row is selected: select rows with Shift+Space or at their left edge, then repeat the "
     u"command."},
    {1405, u"Hier ist nichts zu kopieren.", u"There is nothing to copy here."},
    {1406, u"Die Zwischenablage enthält keinen Text.", u"The clipboard holds no text."},
    {1407, u"Eingefügt wird in die Tabelle der Trends: mit F6 oder der Maus dorthin gehen.",
     u"Pasting goes into the table of trends: go there with F6 or the mouse."},
    {1408, u"Diese Zelle lässt sich nicht ändern.", u"This cell cannot be changed."},
    {1409, u"In dieser Richtung gibt es kein weiteres Archiv.",
     u"There is no further archive that way."},
    {1410, u"Ein anderes Programm hat das Archiv '<name>' gelöscht.",
     u"Another program has deleted the archive '<name>'."},
    {1411, u"Das Projekt kann nur gelesen werden.", u"The project can only be read."},
    {1420, u"&Aufsteigend sortieren", u"Sort &Ascending"},
    {1421, u"A&bsteigend sortieren", u"Sort &Descending"},
    {1422, u"&Unsortiert", u"&Unsorted"},
    {1423, u"&Spalte ausblenden", u"&Hide Column"},
    {1424, u"Spalte &einblenden", u"&Show Column"},
    {1425, u"Breite an den &Inhalt anpassen", u"&Fit Width to Contents"},
    {1426, u"A&lle Breiten anpassen", u"Fit A&ll Widths"},
    {1427, u"Bis hierher &fixieren", u"Free&ze up to Here"},
    {1428, u"Fixierung auf&heben", u"&Release Frozen Columns"},
    {1429, u"&Spalte", u"&Column"},
    {1440, u"Archive eingrenzen (Strg+F)", u"Narrow archives (Ctrl+F)"},
    {1441, u"Trends eingrenzen (Strg+F)", u"Narrow trends (Ctrl+F)"},
    {1442, u"<n> von <all>", u"<n> of <all>"},
    {1443, u"Keine Zeile enthält \"<text>\". Esc im Suchfeld zeigt wieder alle.",
     u"No row contains \"<text>\". Esc in the find field shows all again."},
};
// clang-format on

static_assert(detail::IsAscending(kAll) && kAll[0].id > kLastNumberOfOld);

}  // namespace

const std::span<const Entry> kOwnTexts(kAll);

}  // namespace MResourceTable
