#pragma once

#include <initializer_list>
#include <QString>

class QPushButton;
class QTabWidget;

/// "auf &Festplatte" without the mark of the access key: "auf Festplatte".
[[nodiscard]] QString WithoutAccessKey(const QString& text);

/// Gives the labels with a buddy, options and check boxes on each page an access key where their
/// text has none: the first letter of a word that is free, else any letter that is, else one that
/// another text can spare. A key that a text brings along stays, unless another text has it
/// already: then options give way to labels, and both to pages and `buttons`, which are reached
/// from everywhere, so that their keys are taken on every page.
void AssignAccessKeys(QTabWidget& tabs, std::initializer_list<const QPushButton*> buttons);
