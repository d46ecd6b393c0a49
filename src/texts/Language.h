#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

#include "platform/Locale.h"

namespace texts {

/// A language of the interface, as its file has it. Immutable once it is known.
struct Language {
    platform::Lcid lcid = 0;
    QString name;               // in the language itself, with an access key; for a menu
    QString locale;             // how it writes numbers and dates: "de_DE"
    QString help;               // folder of its built-in help pages
    QHash<int, QString> texts;  // by the numbers of MResourceTable.h
};

/// Reads a file of texts. Each line that is none, names no text, or names one a second time is told
/// in `problems` with its number, and skipped.
[[nodiscard]] Language ReadLanguage(const QString& content, QStringList& problems);

/// The number of the text that the files have under a key such as "Report.PageOf"; 0 for none.
[[nodiscard]] int NumberOf(const QString& key);

/// The languages there are: German first, then English, then what AddLanguages has brought. Those
/// that are built in are read at the first call, together with those of the folder that the
/// environment variable KV_TEXTS names. They stay where they are until the process ends. For the
/// user-interface thread.
[[nodiscard]] const std::vector<const Language*>& Languages();
/// Null when there is no such language.
[[nodiscard]] const Language* FindLanguage(platform::Lcid lcid);
/// Adds each file *.texts of a folder. What it leaves out is taken from English; a language that is
/// there already stays as it is. What cannot be used is logged, and skipped.
void AddLanguages(const QString& folder);

/// The language of the interface for the whole process, add-ins included: German until it is set.
/// Whoever reads it from the registry sets it; a language that is not there leaves it as it is.
void SetInterfaceLanguage(platform::Lcid lcid);
[[nodiscard]] platform::Lcid InterfaceLanguage();
/// In the language of the interface.
[[nodiscard]] QString InterfaceText(int number);

}  // namespace texts
