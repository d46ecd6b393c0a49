#include "tools/FindingWriter.h"

#include <initializer_list>
#include <utility>
#include <vector>

#include "project/FindingText.h"
#include "project/Schema.h"
#include "tools/JsonText.h"
#include "unicode/Unicode.h"
#include "words/Words.h"

namespace tools {
namespace {

std::u16string EnglishText(std::string_view key) {
    return words::FindLanguage("en")->Text(key);
}

std::string_view IdOf(const project::Finding& finding) {
    return project::InfoOf(finding.rule).id;
}

/// Puts a separator before all items but the first.
class Items {
public:
    Items(TextBuffer& out, std::string_view separator) : out_(out), separator_(separator) {}
    void Next() {
        if (!isFirst_) out_.Append(separator_);
        isFirst_ = false;
    }

private:
    TextBuffer& out_;
    std::string_view separator_;
    bool isFirst_ = true;
};

void WriteText(const std::vector<project::Finding>& findings, TextBuffer& out) {
    for (const project::Finding& finding : findings) {
        out.Append(project::SeverityName(finding.severity));
        out.Append(": ");
        out.Append(project::PlaceOf(finding));
        out.Append(": ");
        out.Append(MessageOf(finding));
        out.Append(" [");
        out.Append(IdOf(finding));
        out.Append("]\n");
    }
}

using Members = std::initializer_list<std::pair<std::string_view, std::string_view>>;

/// Members of an object whose values are texts.
void AppendTexts(const Members& members, TextBuffer& out) {
    Items items(out, ",");
    for (const auto& [name, text] : members) {
        items.Next();
        AppendJson(name, out);
        out.Append(':');
        AppendJson(text, out);
    }
}

void WriteJson(const std::vector<project::Finding>& findings, TextBuffer& out) {
    out.Append('[');
    Items items(out, ",");
    for (const project::Finding& finding : findings) {
        items.Next();
        out.Append("\n{");
        AppendTexts({{"rule", IdOf(finding)},
                     {"severity", project::SeverityName(finding.severity)},
                     {"table", finding.table}},
                    out);
        out.Append(",\"id\":");
        out.AppendNumber(finding.id);
        out.Append(',');
        AppendTexts({{"column", finding.column}, {"message", MessageOf(finding)}}, out);
        out.Append('}');
    }
    out.Append(findings.empty() ? "]\n" : "\n]\n");
}

/// A file's name as a reference of a URI, relative where it is.
std::string UriOf(const std::string& file) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri = file.starts_with('/') ? "file://" : "";
    for (const char c : file) {
        const auto byte = static_cast<unsigned char>(c);
        if (kPlain.find(c) != kPlain.npos) {
            uri += c;
        } else {
            uri += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
        }
    }
    return uri;
}

void WriteSarifRules(TextBuffer& out) {
    Items items(out, ",");
    for (const project::RuleInfo& rule : project::Rules()) {
        items.Next();
        out.Append("\n{");
        AppendTexts({{"id", rule.id}}, out);
        const std::string key = project::TextKeyOf(rule.rule);
        out.Append(",\"shortDescription\":{");
        AppendTexts({{"text", unicode::ToUtf8(EnglishText("RuleMeaning." + key))}}, out);
        out.Append("},\"help\":{");
        AppendTexts({{"text", unicode::ToUtf8(EnglishText("RuleAdvice." + key))}}, out);
        out.Append("},\"defaultConfiguration\":{");
        AppendTexts({{"level", project::SeverityName(rule.severity)}}, out);
        out.Append("}}");
    }
}

/// `why`: null for a finding that is open.
void WriteSarifResult(const project::Finding& finding, const project::Acceptance* why,
                      const std::string& uri, TextBuffer& out) {
    out.Append('{');
    AppendTexts({{"ruleId", IdOf(finding)}}, out);
    out.Append(",\"ruleIndex\":");
    out.AppendNumber(static_cast<int>(finding.rule));
    out.Append(',');
    // The names of severities are those of the format's levels.
    AppendTexts({{"level", project::SeverityName(finding.severity)}}, out);
    out.Append(",\"message\":{");
    AppendTexts({{"text", MessageOf(finding)}}, out);
    out.Append("},\"locations\":[{\"physicalLocation\":{\"artifactLocation\":{");
    AppendTexts({{"uri", uri}}, out);
    out.Append("},\"region\":{\"startLine\":1}},\"logicalLocations\":[{");
    AppendTexts({{"fullyQualifiedName", project::PlaceOf(finding)}, {"kind", "element"}}, out);
    out.Append("}]}],\"partialFingerprints\":{");
    AppendTexts({{"finding/v1", project::FingerprintOf(finding)}}, out);
    out.Append("},\"suppressions\":[");
    if (why != nullptr) {
        out.Append('{');
        AppendTexts({{"kind", "external"}, {"status", "accepted"}, {"justification", why->reason}},
                    out);
        out.Append('}');
    }
    out.Append("]}");
}

void WriteSarif(const std::string& file, const project::Judgement& judgement, TextBuffer& out) {
    out.Append(
        "{\"$schema\":\"https://json.schemastore.org/sarif-2.1.0.json\",\"version\":\"2.1.0\","
        "\"runs\":[{\"tool\":{\"driver\":{\"name\":\"kvs lint\",\"version\":\"" KV_VERSION
        "\",\"rules\":[");
    WriteSarifRules(out);
    out.Append("\n]}},\"results\":[");
    const std::string uri = UriOf(file);
    Items items(out, ",");
    const auto write = [&](const project::Finding& finding, const project::Acceptance* why) {
        items.Next();
        out.Append('\n');
        WriteSarifResult(finding, why, uri, out);
    };
    for (const project::Finding& finding : judgement.open) write(finding, nullptr);
    for (const auto& [finding, why] : judgement.accepted) write(finding, &why);
    out.Append("\n]}]}\n");
}

}  // namespace

std::string MessageOf(const project::Finding& finding) {
    static const project::FindingWords words{EnglishText, {}, true};
    return unicode::ToUtf8(project::MessageOf(finding, words));
}

void WriteFindings(FindingFormat format, const std::string& file,
                   const project::Judgement& judgement, TextBuffer& out) {
    switch (format) {
        case FindingFormat::Text:
            return WriteText(judgement.open, out);
        case FindingFormat::Json:
            return WriteJson(judgement.open, out);
        case FindingFormat::Sarif:
            return WriteSarif(file, judgement, out);
    }
}

}  // namespace tools
