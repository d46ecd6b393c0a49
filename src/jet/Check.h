#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "jet/File.h"
#include "jet/Status.h"

namespace jet {

/// One fault that a check has found.
struct Finding {
    enum class Severity {
        Error,    // the content contradicts the format: data may be lost or be found wrongly
        Warning,  // untidy, but every program reads and writes the file correctly
    };
    Severity severity = Severity::Error;
    std::string text;  // one line of UTF-8; names the table, the index, the page and the row
};

/// Takes the findings as they are made. False ends the check.
using FindingSink = std::function<bool(const Finding&)>;

struct CheckOptions {
    /// Findings about the same subject (rows, indexes, ...) and of the same severity that are
    /// handed over; the rest is only counted, and told as one finding at the end.
    std::size_t mostPerSubject = 200;
    std::size_t cacheBytes = std::size_t{16} << 20;
};

/// Checks a Jet 4 file as a whole: the header, which page belongs to whom, table definitions,
/// rows, long values, and every index against the rows of its table. Changes nothing.
///
/// Nobody may write the file meanwhile. Memory stays small whatever stands in the file: some bytes
/// a page, and the time is bounded by its size.
///
/// Fails only when the file cannot be checked at all: it cannot be read, is encrypted, or is of
/// another version than Jet 4. A place that cannot be read is a finding.
Status Check(File& file, const FindingSink& sink, const CheckOptions& options = {});

/// Corrupt, with the reason, for a file to which every change will be refused.
Status CheckWritable(File& file);

}  // namespace jet
