#pragma once

#include <memory>
#include <QList>
#include <QString>

namespace platform {

/// One key with its value, as text.
struct ProfileEntry {
    QString key;
    QString text;
};

/// A profile file: sections of lines "key=value", such as the settings of the editor and the
/// project's own options. Section and key compare without case. A value in matching single or
/// double quotes is read without them and keeps the blanks at its ends.
///
/// Files in Windows-1252, UTF-8 and UTF-16 are read, and written in the form they have; a new one
/// is Windows-1252 with CRLF line ends. Comments, lines that mean nothing, other sections and the
/// order of all of them stay.
///
/// An object reads the file once, at its first use: make another to see what has changed since.
/// For one thread.
class ProfileFile {
public:
    /// `path` as projects write it or native.
    explicit ProfileFile(const QString& path);
    ~ProfileFile();
    ProfileFile(const ProfileFile&) = delete;
    ProfileFile& operator=(const ProfileFile&) = delete;

    /// `fallback` when the file, the section or the key is missing, and in a file that is no text.
    /// Throws platform::Error when the file is there and cannot be read.
    [[nodiscard]] QString Read(QStringView section, QStringView key, const QString& fallback = {});

    /// Whether a key can stand in such a file: not empty, without blanks at its ends, line ends and
    /// "=", and not beginning like a comment or a section.
    [[nodiscard]] static bool IsKey(const QString& key);

    /// Writes into the file as it is at this moment, and replaces it as a whole: what other
    /// programs have written to it stays, and nobody ever sees half a file. Line ends in a text
    /// become blanks. Nothing is written when nothing would change.
    ///
    /// Throws platform::Error when the file cannot be written (the old one then stays), is no text,
    /// or a key cannot stand in such a file (the same goes for the section, and "]" in it).
    void Write(const QString& section, const QString& key, const QString& text);
    /// The same for many keys at once.
    void Write(const QString& section, const QList<ProfileEntry>& entries);

private:
    struct Rep;
    std::unique_ptr<Rep> rep_;
};

}  // namespace platform
