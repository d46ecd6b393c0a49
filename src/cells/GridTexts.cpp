#include "cells/GridTexts.h"

#include "texts/MResourceTable.h"

namespace {

MResourceTable::Number NumberOf(GridText text) {
    switch (text) {
        case GridText::SortedUpwards:
            return MResourceTable::kTextSortedUpwards;
        case GridText::SortedDownwards:
            return MResourceTable::kTextSortedDownwards;
        case GridText::Choose:
            return MResourceTable::kTextChoose;
        case GridText::CurrentRow:
            return MResourceTable::kTextCurrentRow;
        case GridText::EditedRow:
            return MResourceTable::kTextEditedRow;
        case GridText::Filter:
            return MResourceTable::kTextColumnFilter;
        case GridText::FillHandle:
            return MResourceTable::kTextFillHandle;
        case GridText::FilterChoices:
            return MResourceTable::kTextColumnFilterChoices;
    }
    return MResourceTable::kTextTrendBlank;
}

}  // namespace

std::function<QString(GridText)> GridTexts(const MResources::TextTable& texts) {
    return [&texts](GridText text) { return texts.GetText(NumberOf(text)); };
}
