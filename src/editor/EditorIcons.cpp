#include "editor/EditorIcons.h"

#include "icons/Icons.h"

namespace {

/// The file of the picture.
QStringView NameOf(EditorIcon icon) {
    switch (icon) {
        case EditorIcon::NewArchive:
            return u"archive-new";
        case EditorIcon::EditArchive:
            return u"archive-edit";
        case EditorIcon::DeleteArchive:
            return u"archive-delete";
        case EditorIcon::NewTrend:
            return u"trend-new";
        case EditorIcon::EditTrend:
            return u"trend-edit";
        case EditorIcon::DeleteTrend:
            return u"trend-delete";
        case EditorIcon::Duplicate:
            return u"duplicate";
        case EditorIcon::Copy:
            return u"copy";
        case EditorIcon::Paste:
            return u"paste";
        case EditorIcon::Refresh:
            return u"refresh";
        case EditorIcon::Report:
            return u"report";
        case EditorIcon::Options:
            return u"options";
        case EditorIcon::Find:
            return u"find";
        case EditorIcon::Help:
            return u"help";
    }
    return {};
}

}  // namespace

QIcon MakeIcon(EditorIcon icon) {
    return icons::Icon(NameOf(icon));
}
