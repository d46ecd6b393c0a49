#include "spreadsheet/detail/SharedTexts.h"

#include "spreadsheet/detail/Escape.h"

namespace spreadsheet {

void TextPieces::Clear() {
    text_.clear();
    isInText_ = isInSound_ = false;
}

void TextPieces::Begin(std::string_view name) {
    if (name == "rPh") isInSound_ = true;
    if (name == "t" && !isInSound_) isInText_ = true;
}

void TextPieces::End(std::string_view name) {
    if (name == "rPh") isInSound_ = false;
    if (name == "t") isInText_ = false;
}

std::string TextPieces::Take() {
    Unescape(text_);
    std::string text = std::move(text_);
    Clear();
    return text;
}

void SharedTexts::Begin(std::string_view name, const Attributes&) {
    if (name == "si") {
        piece_.Clear();
    } else {
        piece_.Begin(name);
    }
}

void SharedTexts::End(std::string_view name) {
    piece_.End(name);
    if (name != "si") return;
    texts_ += piece_.Take();
    ends_.push_back(texts_.size());
}

void SharedTexts::Text(std::string_view text) {
    piece_.Add(text);
}

std::optional<std::string_view> SharedTexts::Get(std::size_t number) const {
    if (number >= ends_.size()) return std::nullopt;
    const std::size_t begin = number == 0 ? 0 : ends_[number - 1];
    return std::string_view(texts_).substr(begin, ends_[number] - begin);
}

}  // namespace spreadsheet
