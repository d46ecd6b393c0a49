#pragma once

#include "projectdb/Hierarchy.h"
#include "texts/MResources.h"

class QProgressDialog;
class QWidget;

/// Progress of an operation over many rows: a dialog with Cancel that appears when the operation
/// takes more than half a second, and the busy pointer from the beginning.
class RowProgress final {
public:
    /// `text`: number of the text that says what is being done. `owner` may be null.
    RowProgress(const MResources::TextTable& texts, int text, QWidget* owner);
    ~RowProgress();
    RowProgress(const RowProgress&) = delete;
    RowProgress& operator=(const RowProgress&) = delete;

    /// Valid while the object lives.
    [[nodiscard]] projectdb::Progress Function();

private:
    bool Step(int done, int total);

    const MResources::TextTable& texts_;
    int text_;
    QWidget* owner_;
    QProgressDialog* dialog_ = nullptr;  // made at the first step
};
