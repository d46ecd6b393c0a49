#include "report/ReportTexts.h"

#include <array>
#include <string_view>

#include "platform/Error.h"
#include "platform/Registry.h"

namespace report {
namespace {

// Behind all numbers of the editor's own texts.
constexpr int kFirstId = 40001;

struct Pair {
    std::u16string_view german;
    std::u16string_view english;
};

// clang-format off: one text a line, however long
constexpr std::array kTexts = {
    Pair{u"de_DE", u"en_GB"},
    Pair{u"Report: %1", u"Report: %1"},
    Pair{u"Archive und Trends", u"Archives and trends"},
    Pair{u"Projekt", u"Project"},
    Pair{u"Erstellt am", u"Made on"},
    Pair{u"Inhalt", u"Contents"},
    Pair{u"Archiv", u"Archive"},
    Pair{u"Trends", u"Trends"},
    Pair{u"Seite", u"Page"},
    Pair{u"Übersicht", u"Overview"},
    Pair{u"Auffälligkeiten", u"Problems"},
    Pair{u"Trends ohne Archiv", u"Trends without an archive"},
    Pair{u"Archive: %1", u"Archives: %1"},
    Pair{u"Trends: %1", u"Trends: %1"},
    Pair{u"Auffälligkeiten: %1", u"Problems: %1"},
    Pair{u"Alle Zeilen sind lesbar und vollständig.", u"All rows can be read and are complete."},
    Pair{u"Das Projekt hat keine Archive.", u"The project has no archives."},
    Pair{u"Keine Trends.", u"No trends."},
    Pair{u"Archiv %1", u"Archive %1"},
    Pair{u"Trends (%1)", u"Trends (%1)"},
    Pair{u"Trends %1 bis %2 von %3", u"Trends %1 to %2 of %3"},
    Pair{u"« vorige", u"« previous"},
    Pair{u"nächste »", u"next »"},
    Pair{u"Seite %1 von %2", u"Page %1 of %2"},
    Pair{u"Seite %1", u"Page %1"},

    Pair{u"&Drucken …", u"&Print …"},
    Pair{u"PD&F …", u"PD&F …"},
    Pair{u"&HTML …", u"&HTML …"},
    Pair{u"&Neu lesen", u"&Read again"},
    Pair{u"&Hilfe", u"&Help"},
    Pair{u"&Suchen:", u"&Find:"},
    Pair{u"Nächste Fundstelle", u"Next match"},
    Pair{u"Vorige Fundstelle", u"Previous match"},
    Pair{u"„%1“ kommt im Report nicht vor.", u"“%1” does not occur in the report."},
    Pair{u"Archive filtern", u"Filter archives"},
    Pair{u"Den ganzen Report drucken", u"Print the whole report"},
    Pair{u"Den ganzen Report als PDF-Datei speichern", u"Save the whole report as a PDF file"},
    Pair{u"Den ganzen Report als HTML-Datei speichern", u"Save the whole report as an HTML file"},
    Pair{u"Das Projekt noch einmal lesen", u"Read the project again"},
    Pair{u"Als PDF speichern", u"Save as PDF"},
    Pair{u"Als HTML speichern", u"Save as HTML"},
    Pair{u"PDF-Dateien (*.pdf)", u"PDF files (*.pdf)"},
    Pair{u"HTML-Dateien (*.html)", u"HTML files (*.html)"},
    Pair{u"Abbrechen", u"Cancel"},
    Pair{u"Das Projekt wird gelesen …", u"Reading the project …"},
    Pair{u"Suche nach „%1“ …", u"Searching for “%1” …"},
    Pair{u"Seiten werden gezählt …", u"Counting pages …"},
    Pair{u"Seiten werden ausgegeben …", u"Writing pages …"},
    Pair{u"HTML-Datei wird geschrieben …", u"Writing the HTML file …"},
    Pair{u"Geschrieben: %1", u"Written: %1"},
    Pair{u"Abgebrochen.", u"Cancelled."},
    Pair{u"„%1“ kann nicht geschrieben werden: %2", u"“%1” cannot be written: %2"},
    Pair{u"Der Drucker nimmt den Report nicht an.", u"The printer does not take the report."},
    Pair{u"Das Projekt „%1“ kann nicht gelesen werden:\n%2",
         u"The project “%1” cannot be read:\n%2"},
    Pair{u"Der Report „%1“ ist nicht bekannt.", u"There is no report “%1”."},

    Pair{u"Anzeigetext", u"Display text"},
    Pair{u"Archivart", u"Archive type"},
    Pair{u"Ringpuffer", u"Circular buffer"},
    Pair{u"Ringpuffer für %1 Datensätze", u"Circular buffer of %1 records"},
    Pair{u"Folgearchiv", u"Continuation file"},
    Pair{u"unbekannte Archivart %1", u"unknown archive type %1"},
    Pair{u"weitere Typbits: %1", u"further type bits: %1"},
    Pair{u"Speicherort", u"Storage"},
    Pair{u"auf Festplatte", u"on hard disk"},
    Pair{u"im Hauptspeicher (RAM)", u"in main memory (RAM)"},
    Pair{u"schnell gespeichert", u"saved fast"},
    Pair{u"sicher gespeichert", u"saved safely"},
    Pair{u"Aufzeichnung", u"Recording"},
    Pair{u"synchron zum Prozesszyklus, alle %1 Prozesszyklen",
         u"synchronous to the process cycle, every %1 process cycles"},
    Pair{u"asynchron (absolute Zeitbasis), alle %1 ms",
         u"asynchronous (absolute time base), every %1 ms"},
    Pair{u"bei Änderung der X-Variablen %1", u"on change of the X variable %1"},
    Pair{u"durch den Trigger %1", u"by the trigger %1"},
    Pair{u"ändert sich ein Trend, werden alle gespeichert",
         u"all trends are saved when one changes"},
    Pair{u"keine Aufzeichnung (Trendviewer)", u"no recording (trend viewer)"},
    Pair{u"nur manuelle Aufzeichnung", u"manual recording only"},
    Pair{u"Dateiwechsel", u"File change"},
    Pair{u"wenn die Triggervariable %1 gesetzt wird", u"when the trigger variable %1 is set"},
    Pair{u"nach %1 Datensätzen", u"after %1 records"},
    Pair{u"bei Jahreswechsel", u"at the change of the year"},
    Pair{u"bei Monatswechsel", u"at the change of the month"},
    Pair{u"bei Wochenwechsel", u"at the change of the week"},
    Pair{u"bei Tageswechsel", u"at the change of the day"},
    Pair{u"bei Stundenwechsel", u"at the change of the hour"},
    Pair{u"bei Minutenwechsel", u"at the change of the minute"},
    Pair{u"bei Sekundenwechsel", u"at the change of the second"},
    Pair{u"niemals", u"never"},
    Pair{u"Grenzen", u"Limits"},
    Pair{u"höchstens %1 Dateien", u"at most %1 files"},
    Pair{u"zusammen höchstens %1 kB", u"together at most %1 kB"},
    Pair{u"keine", u"none"},
    Pair{u"Dateien", u"Files"},
    Pair{u"Redundanzdatei", u"Redundancy file"},
    Pair{u"keine", u"none"},
    Pair{u"X-Variable", u"X variable"},
    Pair{u"Triggervariable", u"Trigger variable"},
    Pair{u"Start/Stopp-Variable", u"Start/stop variable"},
    Pair{u"Löschvariable", u"Clear variable"},
    Pair{u"Cachegröße", u"Cache size"},
    Pair{u"Berechtigungsstufe", u"Authorisation level"},
    Pair{u"Kommentar", u"Comment"},
    Pair{u"unbekannter Code %1", u"unknown code %1"},
    Pair{u"nicht angegeben", u"not given"},
    Pair{u"beschädigt", u"damaged"},
    Pair{u"Diese Zeile ist nicht mehr lesbar: %1", u"This row can no longer be read: %1"},
    Pair{u"kein Indextext %1", u"no index text %1"},

    Pair{u"Trend", u"Trend"},
    Pair{u"Trendvariable", u"Trend variable"},
    Pair{u"Bereich", u"Range"},
    Pair{u"Ersatzwerte", u"Substitutes"},
    Pair{u"Hysterese", u"Hysteresis"},
    Pair{u"Filter", u"Filter"},
    Pair{u"Anzeige", u"Display"},
    Pair{u"Kurve", u"Curve"},
    Pair{u"Toleranz", u"Tolerance"},

    Pair{u"%1 bis %2", u"%1 to %2"},
    Pair{u"Wert × %1 + %2", u"value × %1 + %2"},
    Pair{u"Max.: %1", u"max.: %1"},
    Pair{u"Min.: %1", u"min.: %1"},
    Pair{u"Fehler: %1", u"error: %1"},
    Pair{u"%1 absolut", u"%1 absolute"},
    Pair{u"%1 ‰ von Maximum − Minimum", u"%1 ‰ of maximum − minimum"},
    Pair{u"%1 ‰ vom Aufzeichnungswert", u"%1 ‰ of the stored value"},
    Pair{u"keine", u"none"},
    Pair{u"kein Filter", u"no filter"},
    Pair{u"Mittelwert", u"average value"},
    Pair{u"Mittelung", u"averaging"},
    Pair{u"Max", u"max"},
    Pair{u"Min", u"min"},
    Pair{u"Tiefe %1", u"depth %1"},
    Pair{u"≤ %1 Samples", u"≤ %1 samples"},
    Pair{u"Geradeninterpolation", u"line interpolation"},
    Pair{u"Treppeninterpolation", u"stair interpolation"},
    Pair{u"Splineinterpolation", u"spline interpolation"},
    Pair{u"Punkte", u"points"},
    Pair{u"Balken", u"bars"},
    Pair{u"%1 px", u"%1 px"},
    Pair{u"Linie", u"line"},
    Pair{u"gestrichelt", u"dashed"},
    Pair{u"gepunktet", u"dotted"},
    Pair{u"oben %1", u"upper %1"},
    Pair{u"unten %1", u"lower %1"},
    Pair{u"Kurve außerhalb in Bandfarbe", u"curve outside in band colour"},
    Pair{u"Band als Linie", u"band as lines"},
    Pair{u"Band als Linie, Kurve außerhalb in Bandfarbe",
         u"band as lines, curve outside in band colour"},

    Pair{u"Die Zeile ist nicht lesbar: %1", u"The row cannot be read: %1"},
    Pair{u"Der Wert von „%1“ ist nicht lesbar.", u"The value of “%1” cannot be read."},
    Pair{u"Der Indextext %1 fehlt.", u"There is no index text %1."},
    Pair{u"Das Archiv %1 fehlt.", u"There is no archive %1."},
    Pair{u"Die Tabelle ist nicht lesbar: %1", u"The table cannot be read: %1"},
    Pair{u"… und %1 weitere", u"… and %1 more"},
    Pair{u"Stelle", u"Place"},
    Pair{u"Befund", u"Finding"},
};
// clang-format on
static_assert(kTexts.size() == static_cast<std::size_t>(Text::Count_));

}  // namespace

ReportTexts::ReportTexts(platform::Registry& registry) {
    try {
        table_.Initialize(registry);
    } catch (const platform::Error&) {
        // The table is filled all the same; whoever needs the registry's other values tells.
    }
    for (std::size_t i = 0; i < kTexts.size(); ++i) {
        table_.AddTexts(kFirstId + static_cast<int>(i), {kTexts[i].german, kTexts[i].english});
    }
    locale_ = QLocale((*this)(Text::LocaleName));
}

QString ReportTexts::operator()(Text text) const {
    return table_.GetText(kFirstId + static_cast<int>(text));
}

}  // namespace report
