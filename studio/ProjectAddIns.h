#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "KV4AddIn/KV4AddIn.h"
#include "studio/AddInSet.h"

namespace studio {

/// The add-ins as one project has them. The first project takes the root object of each, a further
/// one an object of its own where the add-in makes some. An add-in that is there only once goes to
/// the project that asks for it last, and is terminated in the one before.
class ProjectAddIns {
public:
    /// `loaded` is borrowed and outlives this.
    explicit ProjectAddIns(AddInSet& loaded) noexcept : loaded_(loaded) {}
    ~ProjectAddIns();
    ProjectAddIns(const ProjectAddIns&) = delete;
    ProjectAddIns& operator=(const ProjectAddIns&) = delete;

    [[nodiscard]] bool InCall() const noexcept { return loaded_.InCall(); }

    /// Initialises those that this project does not have yet. False when it has had all of them.
    bool Initialize(const QString& project, KV4AddIn::IHost& host);
    /// Tells those that have been initialised since that the tree is on the screen.
    void StartUp();
    void Terminate();

    /// Calls every add-in that this project has. An event that happens while an add-in is being
    /// called is dropped: the contract promises one call at a time.
    template <class Call>
    void ForEach(const char* event, Call&& call) {
        if (loaded_.inCall_) return;
        const AddInSet::CallScope scope(loaded_.inCall_);
        for (std::size_t i = 0; i < members_.size(); ++i) {
            if (members_[i].state == State::Out) continue;
            Guarded(i, event, [&] { call(*members_[i].addIn); });
        }
    }

private:
    enum class State { Out, Initialized, Started };
    struct Member {
        State state = State::Out;
        KV4AddIn::CKV4Extensibility* addIn = nullptr;      // null: the project has none
        std::unique_ptr<KV4AddIn::CKV4Extensibility> own;  // null: it is the root object
    };

    template <class Call>
    void Guarded(std::size_t number, const char* event, Call&& call) {
        loaded_.Guarded(loaded_.members_[number].progId, event, call);
    }
    void Take(std::size_t number);
    void GiveUp(std::size_t number);
    void TerminateOne(std::size_t number);

    AddInSet& loaded_;
    std::vector<Member> members_;  // as loaded_.members_ were at the last Initialize
};

}  // namespace studio
