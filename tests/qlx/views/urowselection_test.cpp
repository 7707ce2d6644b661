#include "qlx/views/urowselection.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

TEST(RowSelection, AgreesWithASetOfRowsAndKeepsItsRangesApart) {
    std::minstd_rand random(3);
    for (int run = 0; run < 200; ++run) {
        QLX_RowSelection selection;
        std::set<std::int64_t> rows;
        for (int step = 0; step < 40; ++step) {
            const std::int64_t first = random() % 30;
            const std::int64_t end = first + random() % 8;
            const bool add = random() % 2 != 0;
            if (add)
                selection.Add(first, end);
            else
                selection.Remove(first, end);
            for (std::int64_t row = first; row < end; ++row)
                add ? static_cast<void>(rows.insert(row)) : static_cast<void>(rows.erase(row));
            const std::int64_t toggled = random() % 30;
            selection.Toggle(toggled);
            if (rows.erase(toggled) == 0)
                rows.insert(toggled);

            ASSERT_EQ(selection.Count(), static_cast<std::int64_t>(rows.size()));
            for (std::int64_t row = -1; row < 40; ++row)
                ASSERT_EQ(selection.Contains(row), rows.count(row) == 1) << row;
            const auto& ranges = selection.GetRanges();
            for (std::size_t i = 1; i < ranges.size(); ++i)
                ASSERT_LT(ranges[i - 1].mEnd, ranges[i].mFirst);
        }
    }
}
