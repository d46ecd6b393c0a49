#include "transfer/KeptForm.h"

#include <QSettings>

#include "platform/Locale.h"
#include "platform/StateFolder.h"

namespace transfer {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kSeparators = u";,\t";
constexpr QStringView kDecimals = u",.";

QString StateFile() {
    return platform::StateFolder() + u"/exchange.ini"_s;
}

/// One of a set of characters; what a file says besides is not taken.
char CharIn(const QSettings& store, const QString& key, QStringView choices, char fallback) {
    const int code = store.value(key, static_cast<int>(fallback)).toInt();
    return choices.contains(QChar(code)) ? static_cast<char>(code) : fallback;
}

}  // namespace

exchange::CsvForm CsvFormOfStation() {
    const QString chosen = platform::NumberLocaleName();
    if (!chosen.isEmpty()) return exchange::CsvFormOf(chosen.toStdString());
    for (const char* name : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const QByteArray locale = qgetenv(name);
        if (!locale.isEmpty()) return exchange::CsvFormOf(locale.toStdString());
    }
    return {};
}

KeptForm LoadKeptForm() {
    const QSettings store(StateFile(), QSettings::IniFormat);
    KeptForm form;
    form.csv = CsvFormOfStation();
    form.isWorkbook = store.value(u"workbook"_s, true).toBool();
    form.csv.separator = CharIn(store, u"separator"_s, kSeparators, form.csv.separator);
    form.csv.decimal = CharIn(store, u"decimal"_s, kDecimals, form.csv.decimal);
    if (store.value(u"windows1252"_s, false).toBool()) {
        form.csv.encoding = csv::Encoding::Windows1252;
    }
    form.csv.hasMark = store.value(u"mark"_s, true).toBool();
    form.exportFolder = store.value(u"exportFolder"_s).toString();
    form.importFolder = store.value(u"importFolder"_s).toString();
    return form;
}

void Keep(const KeptForm& form) {
    QSettings store(StateFile(), QSettings::IniFormat);
    store.setValue(u"workbook"_s, form.isWorkbook);
    store.setValue(u"separator"_s, static_cast<int>(form.csv.separator));
    store.setValue(u"decimal"_s, static_cast<int>(form.csv.decimal));
    store.setValue(u"windows1252"_s, form.csv.encoding == csv::Encoding::Windows1252);
    store.setValue(u"mark"_s, form.csv.hasMark);
    store.setValue(u"exportFolder"_s, form.exportFolder);
    store.setValue(u"importFolder"_s, form.importFolder);
}

}  // namespace transfer
