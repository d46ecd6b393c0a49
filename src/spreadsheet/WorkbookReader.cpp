#include "spreadsheet/WorkbookReader.h"

#include <map>
#include <vector>

#include "spreadsheet/detail/NumberFormats.h"
#include "spreadsheet/detail/Package.h"
#include "spreadsheet/detail/SharedTexts.h"
#include "spreadsheet/detail/SheetScan.h"
#include "spreadsheet/detail/XmlScan.h"

namespace spreadsheet {
namespace {

/// The folder of a part, with its slash.
std::string FolderOf(const std::string& part) {
    return part.substr(0, part.rfind('/') + 1);
}

/// Where a relationship leads: from the folder of its part, or from the root.
std::string Resolved(const std::string& folder, std::string_view target) {
    std::string path =
        target.starts_with('/') ? std::string(target.substr(1)) : folder + std::string(target);
    for (std::size_t up = path.find("../"); up != std::string::npos; up = path.find("../")) {
        const std::size_t parent = up < 2 ? 0 : path.rfind('/', up - 2) + 1;
        path.erase(parent, up + 3 - parent);
    }
    return path;
}

/// The parts that a part leads to.
class Relations final : public XmlHandler {
public:
    explicit Relations(std::string folder) : folder_(std::move(folder)) {}

    void Begin(std::string_view name, const Attributes& attributes) override {
        if (name != "Relationship" || attributes.Get("TargetMode") == "External") return;
        const std::string_view type = attributes.Get("Type");
        const std::string path = Resolved(folder_, attributes.Get("Target"));
        byId[std::string(attributes.Get("Id"))] = path;
        byType[std::string(type.substr(type.rfind('/') + 1))] = path;
    }
    void End(std::string_view) override {}
    void Text(std::string_view) override {}

    std::map<std::string, std::string> byId;
    std::map<std::string, std::string> byType;  // by the last word of the type

private:
    std::string folder_;
};

/// The part with the sheets' names.
class Contents final : public XmlHandler {
public:
    void Begin(std::string_view name, const Attributes& attributes) override {
        if (name == "workbookPr") from1904 = attributes.IsTrue("date1904");
        if (name != "sheet") return;
        const std::string_view state = attributes.Get("state");
        sheets.push_back(
            {std::string(attributes.Get("name")), !state.empty() && state != "visible"});
        relations.emplace_back(attributes.Get("id"));
    }
    void End(std::string_view) override {}
    void Text(std::string_view) override {}

    std::vector<SheetInfo> sheets;
    std::vector<std::string> relations;  // of each sheet
    bool from1904 = false;
};

}  // namespace

struct WorkbookReader::Book {
    Package package;
    Contents contents;
    std::map<std::string, std::string> parts;  // by the relation's ID
    SharedTexts texts;
    NumberFormats formats;
    Fault fault;
    // Of the sheet; the last one goes first.
    std::unique_ptr<Part> part;
    std::unique_ptr<SheetScan> rows;
    std::unique_ptr<XmlScan> scan;

    /// Reads a part that has to be there.
    bool Read(const std::string& name, XmlHandler& handler) {
        const auto found = package.Find(name);
        fault = found != nullptr ? ScanAll(*found, handler)
                                 : Fault{.kind = Fault::Kind::NoWorkbook,
                                         .detail = "\"" + name + "\" is missing"};
        return !fault;
    }

    bool Open(std::string bytes) {
        fault = package.Open(std::move(bytes));
        Relations root("");
        if (fault || !Read("_rels/.rels", root)) return false;
        const std::string main = root.byType["officeDocument"];
        const std::string folder = FolderOf(main);
        Relations relations(folder);
        if (!Read(main, contents) ||
            !Read(folder + "_rels/" + main.substr(folder.size()) + ".rels", relations)) {
            return false;
        }
        parts = relations.byId;
        const std::string& shared = relations.byType["sharedStrings"];
        const std::string& styles = relations.byType["styles"];
        return (shared.empty() || Read(shared, texts)) && (styles.empty() || Read(styles, formats));
    }

    void Begin(std::size_t sheet) {
        scan.reset();
        const std::string& name = parts[contents.relations.at(sheet)];
        part = package.Find(name);
        if (part == nullptr) {
            fault = {.kind = Fault::Kind::Damaged, .part = name, .detail = "it is missing"};
            return;
        }
        rows = std::make_unique<SheetScan>(
            SheetContext{contents.sheets[sheet].name, texts, formats, contents.from1904});
        scan = std::make_unique<XmlScan>(*part, *rows);
    }

    bool Next(Row& row) {
        if (fault || scan == nullptr) return false;
        while (!rows->TakeRow(row)) {
            if (scan->Step()) continue;
            fault = scan->GetFault();
            return false;
        }
        return true;
    }
};

WorkbookReader::WorkbookReader() : book_(std::make_unique<Book>()) {}
WorkbookReader::~WorkbookReader() = default;

bool WorkbookReader::Open(std::string bytes) {
    return book_->Open(std::move(bytes));
}

std::span<const SheetInfo> WorkbookReader::Sheets() const {
    return book_->contents.sheets;
}

void WorkbookReader::Begin(std::size_t sheet) {
    book_->Begin(sheet);
}

bool WorkbookReader::Next(Row& row) {
    return book_->Next(row);
}

const Fault& WorkbookReader::GetFault() const {
    return book_->fault;
}

bool LooksLikeWorkbook(std::string_view bytes) {
    return bytes.starts_with("PK\x03\x04") || bytes.starts_with("\xD0\xCF\x11\xE0");
}

}  // namespace spreadsheet
