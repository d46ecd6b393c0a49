#include "help/HelpTexts.h"

namespace help {

void AddHelpTexts(MResources::TextTable& table) {
    const auto add = [&](Text text, std::u16string_view german, std::u16string_view english) {
        table.AddTexts(static_cast<int>(text), {german, english});
    };
    add(Text::Folder, u"de", u"en");
    add(Text::WindowTitle, u"Hilfe: %1", u"Help: %1");
    add(Text::Home, u"Inhalt", u"Contents");
    add(Text::Back, u"Zurück", u"Back");
    add(Text::Forward, u"Vorwärts", u"Forward");
    add(Text::Larger, u"Größer", u"Larger");
    add(Text::Smaller, u"Kleiner", u"Smaller");
    add(Text::Search, u"Suchen", u"Search");
    add(Text::SearchTip, u"In allen Seiten suchen (Strg+F)", u"Search all pages (Ctrl+F)");
    add(Text::Contents, u"Inhaltsverzeichnis", u"Table of contents");
    add(Text::Page, u"Hilfeseite", u"Help page");
    add(Text::Matches, u"Gefundene Seiten", u"Pages found");
    add(Text::NoMatches, u"Keine Seite enthält „%1“.", u"No page holds “%1”.");
    add(Text::Loading, u"Die Hilfedatei wird gelesen …", u"Reading the help file …");
    add(Text::FileDamaged,
        u"Die Hilfedatei „%1“ ist nicht lesbar; das sind die eingebauten Seiten.",
        u"The help file “%1” cannot be read; these are the built-in pages.");
    add(Text::NoSuchPage, u"Diese Seite gibt es nicht: %1", u"There is no such page: %1");
}

}  // namespace help
