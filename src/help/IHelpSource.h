#pragma once

#include <optional>
#include <QByteArray>
#include <QList>
#include <QString>

namespace help {

/// An entry of a table of contents; entries of a deeper level belong to the one before them.
struct ContentsEntry {
    int level = 0;  // from 0
    QString title;
    QString page;  // empty: a heading without a page
};

/// A word under which a page is looked up.
struct IndexEntry {
    QString term;
    QString title;  // of the page
    QString page;   // may carry "#" and a place
};

/// The pages of one help. Paths name files inside it, without a slash in front; a page may carry
/// "#" and the name of a place in it. What is read may be anything: it is checked where it is used.
class IHelpSource {
public:
    virtual ~IHelpSource() = default;

    [[nodiscard]] virtual QString Title() const = 0;
    /// The page shown first.
    [[nodiscard]] virtual QString HomePage() const = 0;
    /// The page of a context number; empty when there is none.
    [[nodiscard]] virtual QString TopicPage(int topic) const = 0;
    [[nodiscard]] virtual QList<ContentsEntry> Contents() const = 0;
    /// All pages that a search looks through.
    [[nodiscard]] virtual QStringList Pages() const = 0;
    /// In the order of the words; empty where a help has none.
    [[nodiscard]] virtual QList<IndexEntry> Index() const = 0;
    /// A file; nullopt when there is none.
    [[nodiscard]] virtual std::optional<QByteArray> Read(const QString& path) const = 0;
    /// Our own pages, which may do what a stranger's may not: pictures as SVG, colours that
    /// follow the desktop.
    [[nodiscard]] virtual bool IsBuiltIn() const = 0;
};

}  // namespace help
