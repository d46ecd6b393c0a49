#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/detail/XmlScan.h"

namespace spreadsheet {

/// Gathers the text of an element that holds it in one piece or in several with looks of their own;
/// how it is pronounced, which East Asian programs add, is left out.
class TextPieces {
public:
    void Clear();
    void Begin(std::string_view name);
    void End(std::string_view name);
    void Add(std::string_view text) {
        if (isInText_) text_ += text;
    }
    [[nodiscard]] std::string Take();
    [[nodiscard]] std::size_t Size() const { return text_.size(); }

private:
    std::string text_;
    bool isInText_ = false;
    bool isInSound_ = false;
};

/// The part with the texts that cells name by number. They are kept close together: a small file
/// may have many.
class SharedTexts final : public XmlHandler {
public:
    void Begin(std::string_view name, const Attributes& attributes) override;
    void End(std::string_view name) override;
    void Text(std::string_view text) override;

    [[nodiscard]] std::optional<std::string_view> Get(std::size_t number) const;

private:
    TextPieces piece_;
    std::string texts_;
    std::vector<std::size_t> ends_;  // in texts_
};

}  // namespace spreadsheet
