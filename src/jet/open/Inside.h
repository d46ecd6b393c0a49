#pragma once

namespace jet {

/// What the objects of the public headers hold, for the library alone.
struct Inside {
    template <typename T>
    [[nodiscard]] static auto& Of(T& object) {
        return *object.rep_;
    }
};

}  // namespace jet
