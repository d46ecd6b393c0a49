#include "studio/AddInLoader.h"

#include <QFileInfo>

#include "platform/ComponentRegistry.h"
#include "studio/AddInSet.h"

namespace studio {
namespace {

AddInReport::State StateOf(platform::ComponentRegistry::Problem::Kind kind) {
    using Kind = platform::ComponentRegistry::Problem::Kind;
    switch (kind) {
        case Kind::NoName:
            return AddInReport::State::NoName;
        case Kind::NameTaken:
            return AddInReport::State::NameTaken;
        case Kind::NoLibrary:
            break;
    }
    return AddInReport::State::NoLibrary;
}

}  // namespace

QList<AddInReport> LoadAddIns(platform::ComponentRegistry& components, AddInSet& addIns) {
    QList<AddInReport> reports;
    for (const auto& problem : components.Problems()) {
        reports.append({QFileInfo(problem.file).fileName(), problem.file, StateOf(problem.kind),
                        problem.reason});
    }
    for (const platform::Component& component : components.Components()) {
        AddInReport report{component.progId, component.file};
        try {
            const auto instance = components.Load(component.progId);
            if (instance.root == nullptr) {
                report.state = AddInReport::State::NoLibrary;
                report.failure = instance.reason;
            } else if (auto* addIn =
                           qobject_cast<KV4AddIn::CKV4Extensibility*>(instance.root.data())) {
                addIns.Add(component.progId, *addIn);
            } else {
                continue;
            }
        } catch (const std::exception& error) {
            report.state = AddInReport::State::Failed;
            report.failure = QString::fromUtf8(error.what());
        } catch (...) {
            report.state = AddInReport::State::Failed;
            report.failure = QStringLiteral("?");
        }
        reports.append(report);
    }
    return reports;
}

}  // namespace studio
