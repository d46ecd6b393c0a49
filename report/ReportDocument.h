#pragma once

#include <QTextDocument>

#include "report/Curve.h"

namespace report {

/// A page of the report with its drawn curves.
class ReportDocument final : public QTextDocument {
public:
    using QTextDocument::QTextDocument;

protected:
    QVariant loadResource(int type, const QUrl& name) override {
        const std::optional<Curve> curve = Curve::FromPictureName(name.toString());
        // Finer than the screen: the printer is.
        if (type == QTextDocument::ImageResource && curve) return curve->Picture(4);
        // Nothing else is fetched, whatever a text of the project holds.
        return {};
    }
};

}  // namespace report
