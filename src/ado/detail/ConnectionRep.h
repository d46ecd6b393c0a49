#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "jet/Database.h"

namespace ado {

struct Connection::Rep {
    std::unique_ptr<jet::Database> database;  // null while closed
    std::string source;                       // as the connection string gave it
    std::vector<Recordset*> recordsets;       // open ones, the oldest first
};

}  // namespace ado
