#pragma once

#include <optional>
#include <QString>

class QWidget;

namespace studio {

/// Lets the user choose one process variable of the open project.
class IVariableBrowser {
public:
    virtual ~IVariableBrowser() = default;
    /// As KV4AddIn::IHost::ChooseVariable.
    [[nodiscard]] virtual std::optional<QString> Choose(QWidget* owner, const QString& current) = 0;
};

/// For a studio that does not read the project's variables: it has none to offer, and an add-in
/// then leaves its field as it is, to be typed in.
class NoVariables final : public IVariableBrowser {
public:
    [[nodiscard]] std::optional<QString> Choose(QWidget* /*owner*/,
                                                const QString& /*current*/) override {
        return std::nullopt;
    }
};

}  // namespace studio
