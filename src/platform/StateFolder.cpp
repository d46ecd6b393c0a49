#include "platform/StateFolder.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace platform {

QString StateFolder() {
    QString folder = qEnvironmentVariable("XDG_STATE_HOME");
    if (!folder.startsWith(u'/')) folder = QDir::homePath() + u"/.local/state"_s;
    return folder + u"/korvala"_s;
}

}  // namespace platform
