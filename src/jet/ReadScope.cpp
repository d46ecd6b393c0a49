#include "jet/ReadScope.h"

#include "jet/page/ReadScopeRep.h"

namespace jet {

ReadScope::ReadScope(Rep& rep, Length length) : rep_(rep), status_(rep.BeginRead(length)) {}

ReadScope::~ReadScope() {
    if (status_.IsOk()) rep_.EndRead();
}

}  // namespace jet
