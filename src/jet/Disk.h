#pragma once

#include <memory>
#include <string>

#include "jet/File.h"
#include "jet/Locks.h"

namespace jet {

enum class OpenMode { Read, ReadWrite };

/// The files that a database consists of, by their paths: the database itself and its journal.
/// Tests put one in place whose power can be cut.
class Disk {
public:
    virtual ~Disk() = default;

    /// The path of a file without links in it. Everything that lies beside a file is named after
    /// this one, so that programs that reach it through different links find the same.
    [[nodiscard]] virtual Result<std::string> Resolve(const std::string& path) = 0;
    /// Opens an existing regular file. Refuses a folder, a device and a file that is not there or
    /// not accessible, and changes nothing in any case.
    [[nodiscard]] virtual Result<std::unique_ptr<File>> Open(const std::string& path,
                                                             OpenMode mode) = 0;
    /// Makes a new, empty file; fails when there is one. The name is durable on return.
    [[nodiscard]] virtual Result<std::unique_ptr<File>> Create(const std::string& path) = 0;
    /// Makes a new, empty file without a name in the folder of a database, with the rights of the
    /// database. It is gone when it is closed, or the program dies, before Publish.
    [[nodiscard]] virtual Result<std::unique_ptr<File>> CreateDraft(
        const std::string& database) = 0;
    /// Gives a draft, which has been synced, its name durably. Duplicate when there is something at
    /// `path`, which is not touched. When it fails the draft has no name.
    [[nodiscard]] virtual Status Publish(File& draft, const std::string& path) = 0;
    /// Whether `path`, which is followed to no other place, is a name of the file.
    [[nodiscard]] virtual bool HasName(const File& file, const std::string& path) = 0;
    /// Opens for reading what a program has left beside a database. NotFound when there is nothing;
    /// BadArgument when it is no regular file; Conflict when it is a link, or nobody's who may
    /// write the database.
    [[nodiscard]] virtual Result<std::unique_ptr<File>> OpenLeftOver(
        const std::string& path, const std::string& database) = 0;
    /// The locks of the programs that use a database; see Locks.
    [[nodiscard]] virtual Result<std::unique_ptr<Locks>> OpenLocks(const std::string& database,
                                                                   OpenMode mode) = 0;
    /// Renames a file durably. Duplicate when there is something at `to`, which is not touched.
    [[nodiscard]] virtual Status GiveName(const std::string& from, const std::string& to) = 0;
    /// Makes a new file as Create does, with the owner, the permissions and the attributes of the
    /// file at `model`. Fails when it cannot have them, and when Replace would not do.
    [[nodiscard]] virtual Result<std::unique_ptr<File>> CreateLike(const std::string& path,
                                                                   const std::string& model) = 0;
    /// Makes a draft, as CreateDraft does, that is to replace the file at `model`, with exactly its
    /// owner, permissions and attributes. Fails when it cannot have them, and when Replace would
    /// not do.
    [[nodiscard]] virtual Result<std::unique_ptr<File>> CreateReplacement(
        const std::string& model) = 0;
    /// Renames a file durably to the name of another, which is then gone. There is always one of
    /// them under that name. Not for a link, nor for a file with several names.
    [[nodiscard]] virtual Status Replace(const std::string& from, const std::string& to) = 0;
    /// Removes a file durably; no failure when there is none.
    [[nodiscard]] virtual Status Remove(const std::string& path) = 0;
};

/// The files of the operating system.
[[nodiscard]] Disk& SystemDisk();

}  // namespace jet
