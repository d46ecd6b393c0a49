#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "spreadsheet/detail/Package.h"
#include "spreadsheet/Fault.h"

struct XML_ParserStruct;

namespace spreadsheet {

/// The attributes of an element, by their names without a prefix.
class Attributes {
public:
    explicit Attributes(const char** pairs) : pairs_(pairs) {}

    /// Empty when there is none.
    [[nodiscard]] std::string_view Get(std::string_view name) const;
    [[nodiscard]] bool Has(std::string_view name) const { return Find(name) != nullptr; }
    /// A number that is not negative and has nothing behind it.
    [[nodiscard]] std::optional<std::uint32_t> Number(std::string_view name) const;
    [[nodiscard]] bool IsTrue(std::string_view name) const;

private:
    [[nodiscard]] const char* Find(std::string_view name) const;

    const char** pairs_;
};

/// What stands in a part, element by element, by names without a prefix.
class XmlHandler {
public:
    XmlHandler() = default;
    virtual ~XmlHandler() = default;
    XmlHandler(const XmlHandler&) = delete;
    XmlHandler& operator=(const XmlHandler&) = delete;

    virtual void Begin(std::string_view name, const Attributes& attributes) = 0;
    virtual void End(std::string_view name) = 0;
    /// May come in several pieces.
    virtual void Text(std::string_view text) = 0;
    /// What the handler cannot go on with; nothing more is read then.
    [[nodiscard]] const Fault& GetFault() const { return fault_; }

protected:
    Fault fault_;
};

/// Reads a part for a handler, one piece at a time.
class XmlScan {
public:
    /// Both are borrowed.
    XmlScan(Part& part, XmlHandler& handler);
    ~XmlScan();
    XmlScan(const XmlScan&) = delete;
    XmlScan& operator=(const XmlScan&) = delete;

    /// False at the end, and after a fault.
    [[nodiscard]] bool Step();
    [[nodiscard]] const Fault& GetFault() const { return fault_; }

private:
    struct Calls;

    void Fail(const char* why);

    Part& part_;
    XmlHandler& handler_;
    XML_ParserStruct* parser_;
    std::uint64_t fed_ = 0;  // bytes
    bool isAtEnd_ = false;
    Fault fault_;
};

/// Reads a part to its end.
[[nodiscard]] Fault ScanAll(Part& part, XmlHandler& handler);

}  // namespace spreadsheet
