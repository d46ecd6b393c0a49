#pragma once

#include <functional>
#include <string>

#include "jet/Database.h"

namespace jet {

/// Makes a new Jet 4 database with the system's own tables, 16 pages, and what `fill` puts into it,
/// all in one transaction that CreateDatabase begins and ends.
///
/// The file is made under another name beside `path` and gets its own when it is whole and durable:
/// there is never a part of it, nor anything after a failure. Duplicate when there is something at
/// `path` already, which is never touched.
Status CreateDatabase(Disk& disk, const std::string& path,
                      const std::function<Status(Database&)>& fill = {});

}  // namespace jet
