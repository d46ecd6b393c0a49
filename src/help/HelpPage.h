#pragma once

#include <QTextBrowser>

#include "help/IHelpSource.h"

namespace help {

/// Shows the pages of one help and nothing else: whatever a page asks for is looked for inside the
/// help, never on the disk or in a network. Links that lead out are handed to the desktop when
/// they are clicked.
class HelpPage final : public QTextBrowser {
    Q_OBJECT
public:
    explicit HelpPage(QWidget* parent = nullptr);

    /// Borrowed; it outlives what is shown of it. Null: nothing is shown. Forgets the history.
    void SetSource(const IHelpSource* source);
    /// `page` may carry "#" and a place.
    void ShowPage(const QString& page);
    /// The page shown, without a place.
    [[nodiscard]] QString ShownPage() const;

    /// Address of a page, and the page of an address; empty when it lies outside.
    [[nodiscard]] static QUrl Address(const QString& page);
    [[nodiscard]] static QString PageOf(const QUrl& address);

    [[nodiscard]] QVariant loadResource(int type, const QUrl& name) override;

protected:
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] QVariant Picture(const QString& path, const QByteArray& bytes) const;
    [[nodiscard]] QByteArray InDesktopColours(QByteArray text) const;
    void Follow(const QUrl& link);

    const IHelpSource* source_ = nullptr;
};

}  // namespace help
