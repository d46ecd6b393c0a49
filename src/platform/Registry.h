#pragma once

#include <cstdint>
#include <memory>
#include <QString>
#include <QStringList>

namespace platform {

/// The files that stand in for the station's registry. Empty: not there.
struct RegistryFiles {
    QString user;    // read when it exists, and always the one that is written
    QString system;  // read when the user has no file

    /// The file that the environment variable KV_REGISTRY names, alone; without it
    /// $XDG_CONFIG_HOME/korvala/machine.reg (default: ~/.config) and /etc/korvala/machine.reg.
    [[nodiscard]] static RegistryFiles FromEnvironment();
};

/// The values of the station below HKEY_LOCAL_MACHINE: a registry export in text form, as it
/// comes from another station (UTF-16, UTF-8, or the older form in the system code page).
///
/// Keys are given without the hive, such as u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0"; keys and
/// value names compare without case, and the empty value name is the default value of the key. A
/// value that is not below SOFTWARE is also looked for below SOFTWARE\WOW6432Node, where stations
/// keep those of 32-bit programs.
///
/// The file is read at the first access and again when it has changed. Lines that cannot be
/// understood are logged once and passed over. A file that does not exist is an empty registry;
/// one that cannot be read or written makes the operation throw platform::Error. For one thread.
class Registry {
public:
    /// On the files that the environment names at each access.
    Registry();
    explicit Registry(RegistryFiles files);
    ~Registry();
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    [[nodiscard]] QString ReadString(QStringView key, QStringView valueName,
                                     const QString& fallback = {});
    /// A string that holds a decimal number counts as that number.
    [[nodiscard]] std::uint32_t ReadDword(QStringView key, QStringView valueName,
                                          std::uint32_t fallback = 0);

    /// Writing replaces the file as a whole, or leaves it as it was. Everything else in it stays:
    /// order, comments, lines of other programs, encoding. The user's file begins as a copy of the
    /// one that was read so far.
    void WriteString(QStringView key, QStringView valueName, const QString& value);
    void WriteDword(QStringView key, QStringView valueName, std::uint32_t value);

    /// The lines of that file that were passed over, as "file:line: text".
    [[nodiscard]] QStringList Problems();

private:
    struct Rep;
    std::unique_ptr<Rep> rep_;
};

}  // namespace platform
