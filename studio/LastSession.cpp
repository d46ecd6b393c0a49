#include "studio/LastSession.h"

#include <QSettings>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kGroup = u"Session"_s;
const QString kProjects = u"Session/Projects"_s;
const QString kCurrent = u"Session/Current"_s;
const QString kProject = u"Project"_s;
const QString kPlace = u"Place"_s;

}  // namespace

LastSession ReadLastSession(QSettings& state) {
    LastSession session;
    const int count = state.beginReadArray(kProjects);
    for (int i = 0; i < count; ++i) {
        state.setArrayIndex(i);
        session.projects.append(
            {state.value(kProject).toString(), state.value(kPlace).toStringList()});
    }
    state.endArray();
    session.current = state.value(kCurrent).toInt();
    return session;
}

void WriteLastSession(QSettings& state, const LastSession& session) {
    state.remove(kGroup);
    if (session.projects.isEmpty()) return;
    state.setValue(kCurrent, session.current);
    state.beginWriteArray(kProjects, static_cast<int>(session.projects.size()));
    for (int i = 0; i < session.projects.size(); ++i) {
        state.setArrayIndex(i);
        state.setValue(kProject, session.projects[i].remembered);
        state.setValue(kPlace, session.projects[i].place);
    }
    state.endArray();
}

}  // namespace studio
