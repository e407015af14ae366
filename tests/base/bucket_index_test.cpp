#include "tessel/base/bucket_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace tessel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Table = std::vector<std::uint32_t>;

bool fill(Table& table, const std::vector<double>& masses) {
    return fill_mass_buckets(table, masses, [](double mass) { return mass; });
}

TEST(bucket_index, buckets_are_thousandths_of_a_dalton) {
    EXPECT_EQ(milli_dalton(kInfinity), kNoBucket);
    EXPECT_EQ(milli_dalton(-kInfinity), kNoBucket);
    EXPECT_EQ(milli_dalton(1e306), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(milli_dalton(15.9949), 15994);
    EXPECT_EQ(milli_dalton(-0.9840155), -984);
}

TEST(bucket_index, empty_list_has_an_empty_table) {
    Table table{1, 2, 3};
    EXPECT_TRUE(fill(table, {}));
    EXPECT_TRUE(table.empty());
}

TEST(bucket_index, positive_lightest_mass_begins_at_0) {
    Table table;
    EXPECT_TRUE(fill(table, {0.002, 0.0021, 0.004}));
    EXPECT_EQ(table, (Table{0, 0, 0, 2, 2}));
}

TEST(bucket_index, negative_lightest_mass_stands_at_position_0) {
    Table table;
    EXPECT_TRUE(fill(table, {-0.002, 0.0, 0.0015}));
    EXPECT_EQ(table, (Table{0, 1, 1, 2}));
}

TEST(bucket_index, table_ends_at_the_bucket_of_the_heaviest) {
    Table table;
    fill(table, {1.0, 57.021464});
    EXPECT_EQ(table.size(), 57022u);
}

TEST(bucket_index, random_masses_are_found_as_by_a_linear_scan) {
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        const double low = round % 2 == 0 ? -0.3 : 0.01;
        std::uniform_real_distribution<double> mass(low, 0.9);
        std::vector<double> masses(std::uniform_int_distribution<std::size_t>(1, 60)(random));
        for (double& m : masses)
            m = mass(random);
        std::sort(masses.begin(), masses.end());
        Table table;
        ASSERT_TRUE(fill(table, masses));
        const std::int64_t offset = std::min<std::int64_t>(milli_dalton(masses.front()), 0);
        ASSERT_EQ(table.size(), static_cast<std::size_t>(milli_dalton(masses.back()) - offset + 1));
        for (std::size_t bucket = 0; bucket < table.size(); ++bucket) {
            std::uint32_t first = 0;
            while (milli_dalton(masses[first]) - offset < static_cast<std::int64_t>(bucket))
                ++first;
            ASSERT_EQ(table[bucket], first) << "bucket " << bucket;
        }
    }
}

TEST(bucket_index, masses_that_are_not_finite_enter_no_table) {
    Table table;
    EXPECT_TRUE(fill(table, {0.001, 0.002, kInfinity, kNaN}));
    EXPECT_EQ(table, (Table{0, 0, 1}));
    EXPECT_TRUE(fill(table, {kInfinity, kNaN}));
    EXPECT_TRUE(table.empty());
}

TEST(bucket_index, table_beyond_fifty_million_entries_is_not_built) {
    Table table{1};
    EXPECT_FALSE(fill(table, {1.0, 50000.0}));
    EXPECT_TRUE(table.empty());
    EXPECT_FALSE(fill(table, {-1e300, 1e300}));
    EXPECT_FALSE(fill(table, {5.0, 1e306}));
    EXPECT_FALSE(fill(table, {-49999.0, 1.0}));
    EXPECT_TRUE(fill(table, {49999.0, 49999.999}));
    EXPECT_EQ(table.size(), 50'000'000u);
}

TEST(bucket_index, entries_out_of_order_are_left_to_the_larger_one_before) {
    Table table;
    const std::vector<std::int64_t> buckets{2, 1, 4, -5, 3};
    fill_buckets(table, buckets, [](std::int64_t bucket) { return bucket; });
    EXPECT_EQ(table, (Table{0, 0, 0, 2, 2}));
}

TEST(bucket_index, first_entry_with_a_bucket_opens_the_table) {
    Table table;
    const std::vector<std::int64_t> buckets{kNoBucket, 1, kNoBucket, 2};
    fill_buckets(table, buckets, [](std::int64_t bucket) { return bucket; });
    EXPECT_EQ(table, (Table{1, 1, 3}));
}

// Plainly: bucket by bucket.
Table naive_table(const std::vector<std::int64_t>& buckets) {
    Table table;
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        if (buckets[i] == kNoBucket) continue;
        const auto end = static_cast<std::size_t>(std::max<std::int64_t>(buckets[i], 0)) + 1;
        while (table.size() < end)
            table.push_back(static_cast<std::uint32_t>(i));
    }
    return table;
}

TEST(bucket_index, short_and_long_tables_are_filled_alike) {
    std::mt19937 random(5);
    const auto itself = [](std::int64_t bucket) { return bucket; };
    for (const std::int64_t last : {0, 1, 31, 32, 33, 4063, 4064, 4094, 4095, 4096, 4097, 9000}) {
        for (int round = 0; round < 20; ++round) {
            std::vector<std::int64_t> buckets(random() % 200);
            for (std::int64_t& bucket : buckets)
                bucket = static_cast<std::int64_t>(random() % 10000) * last / 9999;
            std::sort(buckets.begin(), buckets.end());
            for (std::size_t i = random() % 50; i < buckets.size(); i += 1 + random() % 50)
                buckets[i] = round % 3 == 0 ? kNoBucket : -1 - static_cast<std::int64_t>(i);
            buckets.push_back(last);
            Table table{7, 7};
            ASSERT_TRUE(fill_buckets(table, buckets, itself));
            ASSERT_EQ(table, naive_table(buckets)) << last;
        }
    }
}

}  // namespace
}  // namespace tessel
