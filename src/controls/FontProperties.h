#pragma once

#include <QFont>
#include <QObject>
#include <QString>

/// A font with the property names that the paths of the settings file use (`Font.Name`). Changes
/// are announced one by one; whoever shows the font takes it over from the signal.
class FontProperties final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE SetName)
    Q_PROPERTY(double Size READ Size WRITE SetSize)  // points
    Q_PROPERTY(bool Bold READ Bold WRITE SetBold)
    Q_PROPERTY(bool Italic READ Italic WRITE SetItalic)
    Q_PROPERTY(bool Underline READ Underline WRITE SetUnderline)
    Q_PROPERTY(bool Strikethrough READ Strikethrough WRITE SetStrikethrough)
    Q_PROPERTY(int Weight READ Weight WRITE SetWeight)     // 400 normal, 700 bold
    Q_PROPERTY(int Charset READ Charset WRITE SetCharset)  // kept for its owner, without effect

public:
    explicit FontProperties(const QFont& font, QObject* parent = nullptr);

    [[nodiscard]] const QFont& Font() const noexcept { return font_; }
    void SetFont(const QFont& font);

    [[nodiscard]] QString Name() const { return font_.family(); }
    void SetName(const QString& name);
    [[nodiscard]] double Size() const { return font_.pointSizeF(); }
    /// Sizes that are not above 0, or above kLargestSize, are ignored: they come out of a file.
    static constexpr double kLargestSize = 200;
    void SetSize(double points);
    [[nodiscard]] bool Bold() const { return font_.bold(); }
    void SetBold(bool bold);
    [[nodiscard]] bool Italic() const { return font_.italic(); }
    void SetItalic(bool italic);
    [[nodiscard]] bool Underline() const { return font_.underline(); }
    void SetUnderline(bool underline);
    [[nodiscard]] bool Strikethrough() const { return font_.strikeOut(); }
    void SetStrikethrough(bool strikethrough);
    [[nodiscard]] int Weight() const { return font_.weight(); }
    /// Brought into the range 1 to 1000.
    void SetWeight(int weight);
    [[nodiscard]] int Charset() const noexcept { return charset_; }
    void SetCharset(int charset) { charset_ = charset; }

signals:
    void Changed(const QFont& font);

private:
    QFont font_;
    int charset_ = 0;
};
