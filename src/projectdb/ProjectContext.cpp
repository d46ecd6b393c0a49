#include "projectdb/ProjectContext.h"

namespace projectdb {

ADOArchiv& ProjectContext::Environment() {
    if (!environment) environment = std::make_unique<ADOArchiv>();
    return *environment;
}

void ProjectContext::CloseDatabase() {
    const std::unique_ptr<ADOArchiv> leaving = std::move(environment);
    if (leaving) leaving->CloseConnection();
}

}  // namespace projectdb
