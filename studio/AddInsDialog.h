#pragma once

#include <QDialog>

#include "studio/AddInLoader.h"
#include "studio/StudioTexts.h"

namespace studio {

/// The state of an add-in in words.
[[nodiscard]] Text TextOf(AddInReport::State state);

/// Shows which add-ins are loaded, and why others are not.
class AddInsDialog final : public QDialog {
    Q_OBJECT
public:
    AddInsDialog(const QList<AddInReport>& reports, const StudioTexts& texts,
                 QWidget* parent = nullptr);
};

}  // namespace studio
