#pragma once

#include "help/IHelpSource.h"

namespace help {

/// The project's own pages, compiled in. A value without state but its language.
class BuiltInHelp final : public IHelpSource {
public:
    /// `folder` is "de" or "en".
    explicit BuiltInHelp(QString folder);

    /// Every number that has a page.
    [[nodiscard]] static QList<int> Topics();

    [[nodiscard]] QString Title() const override;
    [[nodiscard]] QString HomePage() const override;
    [[nodiscard]] QString TopicPage(int topic) const override;
    [[nodiscard]] QList<ContentsEntry> Contents() const override;
    [[nodiscard]] QStringList Pages() const override;
    [[nodiscard]] QList<IndexEntry> Index() const override;
    [[nodiscard]] std::optional<QByteArray> Read(const QString& path) const override;
    [[nodiscard]] bool IsBuiltIn() const override { return true; }

private:
    QString folder_;
};

}  // namespace help
