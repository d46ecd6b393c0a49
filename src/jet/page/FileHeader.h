#pragma once

#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// Page 0 of a database file.
///
/// Bytes 0x18 up to 0x97 (Jet 4) or 0x95 (Jet 3) are masked by a constant RC4 key stream, the
/// rest is plain:
///   0x000  4   00 01 00 00                0x03E  u32  key of the pages; not 0 = encrypted
///   0x004  16  "Standard Jet DB" and 00   0x042  40   password; Jet 3: 20
///   0x014  u8  0 Jet 3, 1 Jet 4, later    0x03C  u16  code page
///              versions 2 and up          0x072  f64  creation date, also the password's mask
struct FileHeader {
    Format format = Format::Jet4;
    std::uint16_t codePage = 1252;
    bool hasPassword = false;

    /// `page` holds at least kPageSizeJet3 bytes, the beginning of the file. Unsupported for an
    /// encrypted file and a later version; BadArgument when the file is no database.
    [[nodiscard]] static Result<FileHeader> Parse(Bytes page);
    /// Makes page 0 of a new Jet 4 file, without a password. `created` also stands for the
    /// security identifiers in the catalog; see SystemTables.
    static void MakeNew(std::span<std::byte> page, double created);
};

}  // namespace jet
