#pragma once

#include <string>
#include <vector>

#include "jet/Status.h"

namespace backups {

/// An open file or folder, closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept;

    [[nodiscard]] int Number() const noexcept { return number_; }

private:
    int number_;
};

/// Opens a file for reading without following a link.
[[nodiscard]] jet::Result<Descriptor> OpenToRead(const std::string& path);

/// The folder of a project's backups, to be written by one program at a time.
class Folder {
public:
    /// Makes it, with the folders above it, for the user alone, and waits for another program that
    /// writes it; removes what one that died has left.
    [[nodiscard]] static jet::Result<Folder> Open(const std::string& path);

    /// An empty file for the user alone, under a name that is no backup's.
    [[nodiscard]] jet::Result<Descriptor> Begin();
    /// Makes what Begin has begun durable and gives it its name. Duplicate when there is one.
    [[nodiscard]] jet::Status Finish(const Descriptor& file, const std::string& name);
    /// Removes what Begin has begun and Finish has not finished.
    void GiveUp();
    /// Removes a file of the folder.
    jet::Status Remove(const std::string& name);

private:
    Folder(std::string path, Descriptor folder)
        : path_(std::move(path)), folder_(std::move(folder)) {}

    std::string path_;
    Descriptor folder_;  // locked
};

/// Names of the files in a folder; none when it cannot be read.
[[nodiscard]] std::vector<std::string> NamesIn(const std::string& folder);

}  // namespace backups
