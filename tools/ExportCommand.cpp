#include <array>
#include <cstdlib>

#include "ado/AdoError.h"
#include "exchange/Export.h"
#include "exchange/Workbook.h"
#include "tools/Exchange.h"
#include "tools/Messages.h"
#include "tools/OutputFile.h"
#include "tools/ProjectJson.h"
#include "tools/TextBuffer.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

using exchange::SheetKind;

/// What the environment says for a category of the locale.
std::string LocaleOf(const char* category) {
    for (const char* name : {"LC_ALL", category, "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

void WriteSheet(ado::Connection& connection, const ExportWish& wish, TextBuffer& output) {
    exchange::Selection selection;
    for (const std::string& name : wish.archives) {
        selection.archives.push_back(unicode::ToUtf16(name));
    }
    const auto put = [&](std::string_view text) { output.Append(text); };
    if (wish.format == ExchangeFormat::Csv) {
        exchange::CsvSheetWriter writer(wish.form.csv, put);
        exchange::Export(connection, wish.sheet.value_or(SheetKind::Trends), selection,
                         *wish.form.language, writer);
        return;
    }
    exchange::WorkbookSheets writer(*wish.form.language);
    {
        // Both sheets are of one state.
        const ado::OneState state(connection);
        for (const SheetKind kind : {SheetKind::Archives, SheetKind::Trends}) {
            if (wish.sheet && kind != *wish.sheet) continue;
            exchange::Export(connection, kind, selection, *wish.form.language, writer);
        }
    }
    writer.Finish(put);
}

}  // namespace

SheetForm SheetFormOfStation() {
    return {&words::LanguageOf(LocaleOf("LC_MESSAGES")),
            exchange::CsvFormOf(LocaleOf("LC_NUMERIC"))};
}

ExitStatus Export(const std::string& file, const ExportWish& wish, std::FILE* out, std::FILE* err) {
    OutputFile target(out);
    std::string what = target.Open(wish.to);
    if (what.empty()) {
        try {
            ado::Connection connection;
            Messages messages(err, file);
            Connect(connection, file, messages);
            TextBuffer output(target.Stream(), wish.to == "-" ? std::string() : wish.to);
            if (wish.format == ExchangeFormat::Json) {
                WriteProjectJson(connection, output);
            } else {
                WriteSheet(connection, wish, output);
            }
            connection.Close();
            const ExitStatus status = messages.Finish(output);
            if (status != kSuccess) return status;
            what = target.Keep();
        } catch (const ado::AdoError& error) {
            return Fail(file, error, err);
        }
    }
    if (what.empty()) return kSuccess;
    std::fprintf(err, "kvs: %s\n", what.c_str());
    return kFailure;
}

}  // namespace tools
