#pragma once

#include <string>
#include <string_view>

namespace csv {

/// A stream of bytes, read once from its beginning.
class Source {
public:
    Source() = default;
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// The next bytes; none at the end and after a failure. They stay valid until the next call.
    [[nodiscard]] virtual std::string_view Next() = 0;
    /// Why there are no more; empty at the end. It names the stream.
    [[nodiscard]] virtual const std::string& Error() const = 0;
    /// For messages.
    [[nodiscard]] virtual const std::string& Name() const = 0;
};

}  // namespace csv
