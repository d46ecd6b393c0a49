#include "spreadsheet/Archive.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace spreadsheet {
namespace {

/// A name for a file that goes with the object.
class TemporaryFile {
public:
    TemporaryFile() {
        std::string pattern = std::filesystem::temp_directory_path() / "zip-XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
    }
    ~TemporaryFile() { std::filesystem::remove_all(folder_); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] std::string Name() const { return folder_ / "file.zip"; }

private:
    std::filesystem::path folder_;
};

}  // namespace

std::string Zipped(const Parts& parts) {
    const TemporaryFile file;
    zip_t* zip = zip_open(file.Name().c_str(), ZIP_CREATE, nullptr);
    EXPECT_NE(zip, nullptr);
    for (const auto& [name, text] : parts) {
        zip_source_t* source = zip_source_buffer(zip, text.data(), text.size(), 0);
        EXPECT_GE(zip_file_add(zip, name.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
    }
    EXPECT_EQ(zip_close(zip), 0);
    std::ostringstream bytes;
    bytes << std::ifstream(file.Name(), std::ios::binary).rdbuf();
    return bytes.str();
}

Parts Unzipped(const std::string& bytes) {
    Parts parts;
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
    zip_t* zip = zip_open_from_source(source, ZIP_RDONLY, nullptr);
    EXPECT_NE(zip, nullptr);
    const zip_int64_t count = zip == nullptr ? 0 : zip_get_num_entries(zip, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t info;
        const auto index = static_cast<zip_uint64_t>(i);
        EXPECT_EQ(zip_stat_index(zip, index, 0, &info), 0);
        std::string& text = parts[info.name];
        text.resize(info.size);
        zip_file_t* part = zip_fopen_index(zip, index, 0);
        EXPECT_EQ(zip_fread(part, text.data(), text.size()), static_cast<zip_int64_t>(text.size()));
        zip_fclose(part);
    }
    if (zip != nullptr) zip_discard(zip);
    return parts;
}

Parts WorkbookWith(const std::string& rows) {
    const std::string relations =
        "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>";
    const std::string type = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    const auto relation = [&](const char* id, const char* kind, const char* target) {
        return std::string("<Relationship Id='") + id + "' Type='" + type + kind + "' Target='" +
               target + "'/>";
    };
    return {
        {"_rels/.rels",
         relations + relation("r1", "officeDocument", "xl/workbook.xml") + "</Relationships>"},
        {"xl/workbook.xml",
         "<workbook><sheets><sheet name='S' sheetId='1' r:id='r7' xmlns:r='r'/></sheets>"
         "</workbook>"},
        {"xl/_rels/workbook.xml.rels", relations + relation("r7", "worksheet", "sheets/s.xml") +
                                           relation("r2", "sharedStrings", "/xl/texts.xml") +
                                           relation("r3", "styles", "../xl/styles.xml") +
                                           "</Relationships>"},
        {"xl/texts.xml",
         "<sst><si><t>first</t></si><si><r><t xml:space='preserve'>two </t></r><r><rPr><b/></rPr>"
         "<t>pieces</t></r><rPh sb='0' eb='1'><t>sound</t></rPh></si><si><t/></si></sst>"},
        {"xl/styles.xml",
         "<styleSheet><numFmts><numFmt numFmtId='164' formatCode='yyyy\\-mm\\-dd'/>"
         "<numFmt numFmtId='165' formatCode='0.0&quot; days&quot;;[Red]-0'/></numFmts>"
         "<cellStyleXfs><xf numFmtId='14'/></cellStyleXfs><cellXfs><xf numFmtId='0'/>"
         "<xf numFmtId='14'/><xf numFmtId='164'/><xf numFmtId='165'/><xf numFmtId='21'/>"
         "</cellXfs></styleSheet>"},
        {"xl/sheets/s.xml", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"},
    };
}

}  // namespace spreadsheet
