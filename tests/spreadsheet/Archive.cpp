#include "spreadsheet/Archive.h"

#include <zip.h>

#include <stdexcept>

namespace spreadsheet {
namespace {

void Require(bool isSo) {
    if (!isSo) throw std::runtime_error("the archive of the test has failed");
}

}  // namespace

std::string Zipped(const Parts& parts) {
    zip_source_t* bytes = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    Require(bytes != nullptr);
    zip_source_keep(bytes);
    zip_t* zip = zip_open_from_source(bytes, ZIP_TRUNCATE, nullptr);
    Require(zip != nullptr);
    for (const auto& [name, text] : parts) {
        zip_source_t* source = zip_source_buffer(zip, text.data(), text.size(), 0);
        Require(zip_file_add(zip, name.c_str(), source, ZIP_FL_ENC_UTF_8) >= 0);
    }
    Require(zip_close(zip) == 0);
    zip_stat_t info;
    Require(zip_source_stat(bytes, &info) == 0 && zip_source_open(bytes) == 0);
    std::string out(info.size, '\0');
    Require(zip_source_read(bytes, out.data(), out.size()) == static_cast<zip_int64_t>(out.size()));
    zip_source_close(bytes);
    zip_source_free(bytes);
    return out;
}

Parts Unzipped(const std::string& bytes) {
    Parts parts;
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
    zip_t* zip = zip_open_from_source(source, ZIP_RDONLY, nullptr);
    Require(zip != nullptr);
    const zip_int64_t count = zip_get_num_entries(zip, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t info;
        const auto index = static_cast<zip_uint64_t>(i);
        Require(zip_stat_index(zip, index, 0, &info) == 0);
        std::string& text = parts[info.name];
        text.resize(info.size);
        zip_file_t* part = zip_fopen_index(zip, index, 0);
        Require(zip_fread(part, text.data(), text.size()) == static_cast<zip_int64_t>(text.size()));
        zip_fclose(part);
    }
    zip_discard(zip);
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
         "<numFmt numFmtId='165' formatCode='0.0&quot; days&quot;;[Red]-0'/>"
         "<numFmt numFmtId='166' formatCode='[Red]0.00'/>"
         "<numFmt numFmtId='167' formatCode='[h]:00'/></numFmts>"
         "<cellStyleXfs><xf numFmtId='14'/></cellStyleXfs><cellXfs><xf numFmtId='0'/>"
         "<xf numFmtId='14'/><xf numFmtId='164'/><xf numFmtId='165'/><xf numFmtId='21'/>"
         "<xf numFmtId='166'/><xf numFmtId='167'/></cellXfs></styleSheet>"},
        {"xl/sheets/s.xml", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"},
    };
}

}  // namespace spreadsheet
