#pragma once

#include <QLabel>

class QLineEdit;

/// A remark at the right end of a field, on a ground that stands out: what would be stored of a
/// text that is not quite right. Belongs to its field.
class FieldMark final : public QLabel {
    Q_OBJECT

public:
    /// The mark of a field; made when it has none.
    [[nodiscard]] static FieldMark& Of(QLineEdit& field);

    /// `why` is for the tool tip and for assistive tools.
    void Show(const QString& remark, const QString& why);
    void Clear();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit FieldMark(QLineEdit& field);
    void Place();

    QLineEdit& field_;
};
