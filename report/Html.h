#pragma once

#include <initializer_list>
#include <QString>
#include <QXmlStreamWriter>
#include <utility>

namespace report {

/// XHTML that is written piece by piece, well-formed by itself.
class Html {
public:
    Html() : writer_(&text_) {}
    Html(const Html&) = delete;
    Html& operator=(const Html&) = delete;

    using Attributes = std::initializer_list<std::pair<QString, QString>>;

    /// The head of a file of its own, before all elements.
    void BeginFile();
    void Begin(const QString& element, Attributes attributes = {});
    /// Of the element begun last; the next one begins in a new line of the file.
    void End();
    /// An element that holds nothing.
    void Empty(const QString& element, Attributes attributes = {});
    /// An element that holds a text.
    void Element(const QString& element, const QString& text, Attributes attributes = {});
    /// Line breaks in it are shown.
    void Text(const QString& text);

    /// What has been written since the last call. Elements may be open.
    [[nodiscard]] QString Take();

    /// For what writes elements of its own.
    [[nodiscard]] QXmlStreamWriter& Writer() { return writer_; }

private:
    QString text_;
    QXmlStreamWriter writer_;
};

}  // namespace report
