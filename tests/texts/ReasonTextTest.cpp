#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QScopeGuard>
#include <set>

#include "support/PrintQt.h"
#include "texts/Language.h"
#include "texts/ReasonText.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using reasons::Cause;
using reasons::Reason;

QString TextIn(platform::Lcid language, const Reason& reason) {
    texts::SetInterfaceLanguage(language);
    const auto back = qScopeGuard([] { texts::SetInterfaceLanguage(platform::kLcidGerman); });
    return texts::ReasonText(reason);
}

TEST(ReasonTextTest, EveryCauseHasASentenceOfItsOwnInBothLanguages) {
    std::set<QString> seen;
    for (int cause = 0; cause <= static_cast<int>(Cause::OutOfMemory); ++cause) {
        for (const platform::Lcid language : {platform::kLcidGerman, platform::kLcidEnglish}) {
            SCOPED_TRACE(std::to_string(cause) + " in " + std::to_string(language));
            const QString text =
                TextIn(language, {static_cast<Cause>(cause), "/plant/a.kvs", "Unit", 30});
            EXPECT_FALSE(text.contains(QRegularExpression(u"[][<>]"_s))) << text.toStdString();
            EXPECT_TRUE(text.endsWith(u'.')) << text.toStdString();
            EXPECT_TRUE(seen.insert(text).second) << text.toStdString();
        }
    }
}

TEST(ReasonTextTest, WhatIsNotKnownIsLeftOutAndWhatIsNamedStandsAsItIs) {
    struct Case {
        Reason reason;
        QString german;
        QString english;
    };
    const Case cases[] = {
        {{Cause::WrongType},
         u"Der Wert passt nicht zu dem Feld. Geben Sie einen anderen ein."_s,
         u"The value does not fit the field. Enter another one."_s},
        {{Cause::WrongType, {}, "<file> [<b>]"},
         u"Der Wert passt nicht zu dem Feld '<file> [<b>]'. Geben Sie einen anderen ein."_s,
         u"The value does not fit the field '<file> [<b>]'. Enter another one."_s},
        {{Cause::TextTooLong, {}, "Unit", 30},
         u"Der Text ist zu lang: Das Feld 'Unit' fasst höchstens 30 Zeichen. Kürzen Sie ihn."_s,
         u"The text is too long: the field 'Unit' takes 30 characters at most. Shorten it."_s},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(TextIn(platform::kLcidGerman, c.reason), c.german);
        EXPECT_EQ(TextIn(platform::kLcidEnglish, c.reason), c.english);
    }
    EXPECT_EQ(TextIn(1036, cases[0].reason), cases[0].german) << "no language of the interface";
}

}  // namespace
