#include "studio/ProjectAddIns.h"

namespace studio {

using KV4AddIn::CKV4Extensibility;

ProjectAddIns::~ProjectAddIns() {
    for (std::size_t i = 0; i < members_.size(); ++i) GiveUp(i);
}

bool ProjectAddIns::Initialize(const QString& project, KV4AddIn::IHost& host) {
    if (loaded_.inCall_) return false;
    const AddInSet::CallScope scope(loaded_.inCall_);
    members_.resize(loaded_.members_.size());
    bool isNew = false;
    for (std::size_t i = 0; i < members_.size(); ++i) {
        Member& member = members_[i];
        if (member.state != State::Out) continue;
        isNew = true;
        Guarded(i, "Initialize", [&] { Take(i); });
        if (member.addIn == nullptr) continue;
        member.state = State::Initialized;
        Guarded(i, "Initialize", [&] {
            member.addIn->CKV4Extensibility_Initialize(project, QString(), &host, nullptr);
        });
    }
    return isNew;
}

void ProjectAddIns::StartUp() {
    if (loaded_.inCall_) return;
    const AddInSet::CallScope scope(loaded_.inCall_);
    for (std::size_t i = 0; i < members_.size(); ++i) {
        if (members_[i].state != State::Initialized) continue;
        members_[i].state = State::Started;
        Guarded(i, "StartupComplete",
                [&] { members_[i].addIn->CKV4Extensibility_StartupComplete(); });
    }
}

void ProjectAddIns::Terminate() {
    if (loaded_.inCall_) return;
    const AddInSet::CallScope scope(loaded_.inCall_);
    for (std::size_t i = 0; i < members_.size(); ++i) TerminateOne(i);
}

void ProjectAddIns::Take(std::size_t number) {
    Member& member = members_[number];
    if (member.addIn != nullptr) return;
    AddInSet::Member& loaded = loaded_.members_[number];
    if (loaded.user != nullptr) {
        if (auto* instances = dynamic_cast<KV4AddIn::IInstances*>(loaded.root)) {
            member.own = instances->MakeInstance();
            member.addIn = member.own.get();
            return;
        }
        loaded.user->GiveUp(number);
    }
    loaded.user = this;
    member.addIn = loaded.root;
}

void ProjectAddIns::GiveUp(std::size_t number) {
    Member& member = members_[number];
    TerminateOne(number);
    member.addIn = nullptr;
    member.own.reset();
    ProjectAddIns*& user = loaded_.members_[number].user;
    if (user == this) user = nullptr;
}

void ProjectAddIns::TerminateOne(std::size_t number) {
    Member& member = members_[number];
    if (member.state == State::Out) return;
    member.state = State::Out;
    Guarded(number, "Terminate", [&] { member.addIn->CKV4Extensibility_Terminate(); });
}

}  // namespace studio
