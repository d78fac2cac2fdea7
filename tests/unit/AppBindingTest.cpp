#include "main/settings/AppBinding.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Array = Value::Array;
using Dictionary = Value::Dictionary;

TEST(AppBindingTest, APathOfSpacesIsSkipped) {
    EXPECT_THAT(AppBinding::decode(Array{Dictionary{{"appPath", "  "}}}), IsEmpty());
    EXPECT_THAT(AppBinding::decode(Array{Dictionary{{"appPath", "\n\t"}}}), IsEmpty());
    EXPECT_THAT(AppBinding::decode(Array{Dictionary{{"hotKey", "cmd,K"}}}), IsEmpty());
    EXPECT_THAT(AppBinding::decode(Array{Dictionary{}}), IsEmpty());
}

TEST(AppBindingTest, APathAloneGetsNoShortcutAndNoAutoTuck) {
    EXPECT_THAT(AppBinding::decode(Array{Dictionary{{"appPath", "/Applications/X.app"}}}),
                ElementsAre(AppBinding{"/Applications/X.app", "none", "false"}));
}

TEST(AppBindingTest, SkippedRecordsDoNotDisturbTheOthers) {
    EXPECT_THAT(
        AppBinding::decode(Array{Dictionary{{"appPath", "/a"}}, Dictionary{{"appPath", " "}},
                                 Dictionary{{"appPath", "/b"}}}),
        ElementsAre(AppBinding{"/a"}, AppBinding{"/b"}));
}

TEST(AppBindingTest, TextsAreKeptExactlyAsStored) {
    EXPECT_THAT(AppBinding::decode(Array{
                    Dictionary{{"appPath", " /a "}, {"hotKey", " CMD,k "}, {"autoTuck", "YES "}}}),
                ElementsAre(AppBinding{" /a ", " CMD,k ", "YES "}));
    EXPECT_THAT(
        AppBinding::decode(Array{Dictionary{{"appPath", "/a"}, {"hotKey", ""}, {"autoTuck", ""}}}),
        ElementsAre(AppBinding{"/a", "", ""}));
}

TEST(AppBindingTest, UnknownFieldsAreIgnored) {
    EXPECT_THAT(AppBinding::decode(Array{Dictionary{{"appPath", "/a"}, {"corner", "topLeft"}}}),
                ElementsAre(AppBinding{"/a"}));
}

TEST(AppBindingTest, OneNumberAmongDictionariesMakesTheWholeListUnreadable) {
    EXPECT_THAT(
        AppBinding::decode(Array{Dictionary{{"appPath", "/a"}}, 7, Dictionary{{"appPath", "/b"}}}),
        IsEmpty());
}

TEST(AppBindingTest, OneFieldThatIsNoTextMakesTheWholeListUnreadable) {
    for (const Value& field :
         {Value(true), Value(1), Value(0.5), Value(Array{}), Value(Dictionary{})}) {
        EXPECT_THAT(AppBinding::decode(Array{Dictionary{{"appPath", "/a"}},
                                             Dictionary{{"appPath", "/b"}, {"extra", field}}}),
                    IsEmpty());
    }
}

TEST(AppBindingTest, ABareDictionaryIsNoList) {
    EXPECT_THAT(AppBinding::decode(Dictionary{{"appPath", "/a"}}), IsEmpty());
}

TEST(AppBindingTest, NothingAndOtherKindsAreEmpty) {
    EXPECT_THAT(AppBinding::decode(std::nullopt), IsEmpty());
    EXPECT_THAT(AppBinding::decode(Value("/a")), IsEmpty());
    EXPECT_THAT(AppBinding::decode(Value(true)), IsEmpty());
    EXPECT_THAT(AppBinding::decode(Array{}), IsEmpty());
}

TEST(AppBindingTest, EncodeWritesEveryFieldOfEveryRecord) {
    const Value encoded = AppBinding::encode({{"/a", "none", "false"}, {"/b", "cmd,K", "true"}});
    const Value expected =
        Array{Dictionary{{"appPath", "/a"}, {"hotKey", "none"}, {"autoTuck", "false"}},
              Dictionary{{"appPath", "/b"}, {"hotKey", "cmd,K"}, {"autoTuck", "true"}}};
    EXPECT_EQ(encoded, expected);
    EXPECT_EQ(AppBinding::encode({}), Value(Array{}));
}

TEST(AppBindingTest, EncodedListsDecodeToThemselves) {
    const std::vector<AppBinding> list{
        {"/a b/\u00FC.desktop", "control,option,K", "true"}, {"/c", "", "maybe"}, {"/c", "x", ""}};
    EXPECT_EQ(AppBinding::decode(AppBinding::encode(list)), list);
}

TEST(AppBindingTest, NoneInCapitalsIsKeptWithoutParsing) {
    const auto [kept, dropped] = AppBinding::validated({{"/a", "NONE"}, {"/b", "None"}});
    EXPECT_THAT(kept, ElementsAre(AppBinding{"/a", "NONE"}, AppBinding{"/b", "None"}));
    EXPECT_THAT(dropped, IsEmpty());
}

TEST(AppBindingTest, AnEmptyShortcutIsDroppedWithItsReason) {
    const auto [kept, dropped] = AppBinding::validated({{"/a.desktop", ""}});
    EXPECT_THAT(kept, IsEmpty());
    EXPECT_THAT(dropped, ElementsAre("/a.desktop: unusable hotkey ''"));
}

TEST(AppBindingTest, UnusableShortcutsAreDroppedAndTheOthersKeepTheirOrderAndText) {
    const auto [kept, dropped] = AppBinding::validated({{"/a", " ctrl , k "},
                                                        {"/b", "cmd+K"},
                                                        {"/c", "none", "true"},
                                                        {"/d %@", "K %d"},
                                                        {"/e", " none"}});
    EXPECT_THAT(kept,
                ElementsAre(AppBinding{"/a", " ctrl , k "}, AppBinding{"/c", "none", "true"}));
    EXPECT_THAT(dropped, ElementsAre("/b: unusable hotkey 'cmd+K'", "/d %@: unusable hotkey 'K %d'",
                                     "/e: unusable hotkey ' none'"));
}

TEST(AppBindingTest, OnlyNoneItselfSaysThatThereIsNoShortcut) {
    EXPECT_TRUE((AppBinding{"/a", "nOnE"}).hasNoHotKey());
    EXPECT_TRUE((AppBinding{"/a"}).hasNoHotKey());
    EXPECT_FALSE((AppBinding{"/a", ""}).hasNoHotKey());
    EXPECT_FALSE((AppBinding{"/a", "none "}).hasNoHotKey());
    EXPECT_FALSE((AppBinding{"/a", "cmd,K"}).hasNoHotKey());
}

TEST(AppBindingTest, TenThousandBindingsDecodeAndValidate) {
    constexpr std::size_t count = 10'000;
    std::vector<AppBinding> list;
    for (std::size_t i = 0; i < count; ++i) {
        list.push_back({"/" + std::to_string(i), i % 2 == 0 ? "cmd,K" : "cmd+K", "true"});
    }
    const auto decoded = AppBinding::decode(AppBinding::encode(list));
    ASSERT_EQ(decoded, list);
    const auto [kept, dropped] = AppBinding::validated(decoded);
    ASSERT_EQ(kept.size(), count / 2);
    ASSERT_EQ(dropped.size(), count / 2);
    EXPECT_EQ(kept.back().appPath, "/9998");
    EXPECT_EQ(dropped.back(), "/9999: unusable hotkey 'cmd+K'");
}

}  // namespace
}  // namespace quorvel
