#include "tessel/result/failed_lists.h"

#include <gtest/gtest.h>

namespace tessel {
namespace {

TEST(failed_lists, nothing_is_known_at_first) {
    const CFailedLists lists;
    EXPECT_TRUE(lists.IsEmpty());
    EXPECT_FALSE(lists.Holds(0, 1000));
}

TEST(failed_lists, list_fails_that_holds_a_token_that_is_no_hit) {
    CFailedLists lists(0);
    lists.AddBadHit(11, 9);  // at 20
    EXPECT_FALSE(lists.IsEmpty());
    EXPECT_TRUE(lists.Holds(11, 10));
    EXPECT_TRUE(lists.Holds(20, 1));
    EXPECT_FALSE(lists.Holds(11, 9));
    EXPECT_FALSE(lists.Holds(20, 0));
    EXPECT_FALSE(lists.Holds(21, 100));
}

TEST(failed_lists, list_fails_that_ends_before_bad_fields) {
    CFailedLists lists(0);
    lists.AddBadEnd(11, 9);
    EXPECT_TRUE(lists.Holds(11, 9));
    EXPECT_TRUE(lists.Holds(13, 7));
    EXPECT_FALSE(lists.Holds(11, 8));
    EXPECT_FALSE(lists.Holds(11, 10));
}

TEST(failed_lists, positions_move_with_the_records) {
    CFailedLists lists(0);
    lists.AddBadHit(11, 9);
    lists.AddBadEnd(11, 14);
    lists.PassRecord(5);
    EXPECT_TRUE(lists.Holds(11, 5));
    EXPECT_FALSE(lists.Holds(11, 4));
    EXPECT_TRUE(lists.Holds(16, 4));
    lists.PassRecord(15);  // the bad hit begins the next record
    EXPECT_TRUE(lists.Holds(0, 1));
    EXPECT_FALSE(lists.Holds(1, 50));
}

TEST(failed_lists, every_one_is_kept_until_it_is_passed) {
    CFailedLists lists(0);
    lists.AddBadHit(11, 1000);
    lists.AddBadHit(11, 9);  // does not hide the one behind
    EXPECT_TRUE(lists.Holds(21, 991));
    lists.PassRecord(21);
    EXPECT_TRUE(lists.Holds(0, 991));
    lists.PassRecord(990);
    EXPECT_FALSE(lists.IsEmpty());
    lists.PassRecord(1);
    EXPECT_TRUE(lists.IsEmpty());
}

TEST(failed_lists, what_records_have_passed_is_forgotten) {
    CFailedLists lists(0);
    for (int i = 0; i < 1000; ++i) {
        lists.AddBadEnd(11, 1);
        lists.PassRecord(13);
        ASSERT_TRUE(lists.IsEmpty());
    }
}

TEST(failed_lists, short_lists_are_not_worth_keeping) {
    CFailedLists lists;
    lists.AddBadHit(11, CFailedLists::kLongList);
    lists.AddBadEnd(11, CFailedLists::kLongList);
    EXPECT_TRUE(lists.IsEmpty());
    lists.AddBadHit(11, CFailedLists::kLongList + 1);
    EXPECT_FALSE(lists.IsEmpty());
    lists.Clear();
    EXPECT_TRUE(lists.IsEmpty());
    lists.AddBadEnd(11, CFailedLists::kLongList);
    EXPECT_TRUE(lists.IsEmpty());
}

}  // namespace
}  // namespace tessel
