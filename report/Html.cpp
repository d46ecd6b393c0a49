#include "report/Html.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace report {

void Html::BeginFile() {
    writer_.writeStartDocument();
    writer_.writeDTD(u"<!DOCTYPE html>"_s);
}

void Html::Begin(const QString& element, Attributes attributes) {
    writer_.writeStartElement(element);
    for (const auto& [name, value] : attributes) {
        if (!value.isEmpty()) writer_.writeAttribute(name, value);
    }
}

void Html::End() {
    writer_.writeCharacters({});  // a browser does not know elements that end in their first tag
    writer_.writeEndElement();
    text_ += u'\n';
}

void Html::Empty(const QString& element, Attributes attributes) {
    writer_.writeEmptyElement(element);
    for (const auto& [name, value] : attributes) writer_.writeAttribute(name, value);
}

void Html::Element(const QString& element, const QString& text, Attributes attributes) {
    Begin(element, attributes);
    Text(text);
    writer_.writeEndElement();
}

void Html::Text(const QString& text) {
    const QStringList lines = text.split(u'\n');
    writer_.writeCharacters(lines.front());
    for (qsizetype i = 1; i < lines.size(); ++i) {
        Empty(u"br"_s);
        writer_.writeCharacters(lines[i]);
    }
}

QString Html::Take() {
    writer_.writeCharacters({});  // ends a tag that is still open
    return std::exchange(text_, {});
}

}  // namespace report
