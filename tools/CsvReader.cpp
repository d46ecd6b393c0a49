#include "tools/CsvReader.h"

namespace tools {

/// The opening quote has been read.
bool CsvReader::ReadQuoted(std::string& text) {
    for (int c = 0; (c = in_.get()) != std::char_traits<char>::eof();) {
        if (c == '\n') ++nextLine_;
        if (c != '"') {
            text += static_cast<char>(c);
        } else if (in_.peek() == '"') {
            text += static_cast<char>(in_.get());
        } else {
            return true;
        }
    }
    error_ = "a closing quote is missing";
    return false;
}

bool CsvReader::Next(std::vector<CsvField>& record) {
    record.clear();
    line_ = nextLine_;
    if (line_ == 1 && in_.peek() == 0xEF) in_.ignore(3);
    if (!error_.empty() || in_.peek() == std::char_traits<char>::eof()) return false;
    CsvField field;
    for (;;) {
        const int c = in_.get();
        if (c == '"' && !field) {
            field.emplace();
            if (!ReadQuoted(*field)) return false;
        } else if (c == ',' || c == '\n' || c == std::char_traits<char>::eof()) {
            record.push_back(std::move(field));
            field.reset();
            if (c == ',') continue;
            ++nextLine_;
            return true;
        } else if (c != '\r' || in_.peek() != '\n') {
            if (!field) field.emplace();
            *field += static_cast<char>(c);
        }
    }
}

}  // namespace tools
