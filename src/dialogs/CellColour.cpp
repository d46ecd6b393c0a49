#include "dialogs/CellColour.h"

#include <QTableView>

#include "controls/KVColorSelect.h"
#include "dialogs/ColourTexts.h"

void ChooseCellColour(const GridSplit& split, const QVariant& stored,
                      const MResources::TextTable& texts, const std::function<void(int)>& chosen) {
    QTableView* view = split.View();
    auto* selector = new KVColorSelect(view->viewport());
    selector->setObjectName(QStringLiteral("clrCell"));
    selector->SetTexts(ColourTexts(texts));
    selector->setGeometry(view->visualRect(view->currentIndex()));
    if (stored.isValid()) {
        selector->SetColor(stored.toInt());
    } else {
        selector->ClearColor();
    }
    QObject::connect(selector, &KVColorSelect::ColorChanged, selector, chosen);
    QObject::connect(selector, &KVColorSelect::ChoiceEnded, selector, &QObject::deleteLater);
    selector->show();
    selector->OpenPalette();
}
