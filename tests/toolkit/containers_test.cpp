// KtArray, KtDArray and the list whose nodes survive removal under a visitor.
#include <string>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtArray.h"
#include "toolkit/KtList.h"
#include "toolkit/KtStr.h"

TEST(KtArray, ResizingKeepsElementsAndHoldsExactlyTheCount)
{
    KtArray<float> values(2);
    values[0] = 1.5f;
    values[1] = 2.5f;
    values._resize(8);
    EXPECT_EQ(8, values.count());
    EXPECT_EQ(1.5f, values[0]);
    EXPECT_EQ(2.5f, values[1]);
    EXPECT_EQ(0.0f, values[7]); // new elements are value-initialised
    const float* storage = values.data();
    values._resize(8);
    EXPECT_EQ(storage, values.data());
    values._resize(1);
    EXPECT_EQ(1, values.count());
    EXPECT_EQ(1.5f, values[0]);
    values._resize(0);
    EXPECT_EQ(nullptr, values.data());
    EXPECT_EQ(0, values.count());
}

TEST(KtArray, ClassElementsAreConstructedMovedAndDestroyed)
{
    KtArray<KtStr> names(1);
    names[0] = "root";
    names._resize(50);
    names[49] = "lhand";
    names._resize(2);
    EXPECT_STREQ("root", names[0].text());
    EXPECT_STREQ("", names[1].text());

    KtDArray<KtStr> copy;
    copy = names;
    names[0] = "changed";
    EXPECT_STREQ("root", copy[0].text());
    KtArray<KtStr> moved(std::move(copy));
    EXPECT_EQ(2, moved.count());
    EXPECT_EQ(0, copy.count());
}

TEST(KtArray, NestedArraysCopyDeeply)
{
    KtArray<KtDArray<int>> rows(2);
    rows[0]._resize(3);
    rows[0][2] = 7;
    KtArray<KtDArray<int>> copy(rows);
    rows[0][2] = 9;
    EXPECT_EQ(7, copy[0][2]);
    copy.setElements(copy);
    EXPECT_EQ(7, copy[0][2]);
}

struct Megabyte
{
    char bytes[1 << 20];
};

TEST(KtArray, AnImpossibleSizeAbortsWithTheAllocationMessage)
{
    KtArray<Megabyte> huge;
    EXPECT_DEATH(huge._resize(1 << 30), "Memory allocation failed");
}

TEST(KtList, AppendsCopiesAndIndexesLiveElements)
{
    KtList<KtStr> names;
    names.append("a");
    names.append("b");
    names.append("c");
    EXPECT_EQ(3, names.count());
    EXPECT_STREQ("b", names[1]->text());
    names.removeLast();
    EXPECT_EQ(2, names.count());
    KtList<KtStr> copy(names);
    names.clear();
    EXPECT_TRUE(names._isNull());
    std::string joined;
    for (const KtStr& name : copy)
        joined += name.text();
    EXPECT_EQ("ab", joined);
}

TEST(KtList, IndexPastTheEndPrintsAndGivesNull)
{
    KtList<int> numbers;
    numbers.append(4);
    StreamCapture out(std::cout);
    EXPECT_EQ(nullptr, numbers[1]);
    std::fflush(stdout);
}

TEST(KtDLListIter, RemovingTheVisitedNodeContinuesWithItsSuccessor)
{
    KtList<int> numbers;
    for (int i = 1; i <= 4; ++i)
        numbers.append(i);
    KtDLListIter iter(&numbers);
    EXPECT_EQ(1, *static_cast<int*>(iter.next()));
    // The iterator now stands on 2: remove it under the iterator.
    numbers.remove(iter.node());
    EXPECT_EQ(3, numbers.count()); // counted at removal, not when left
    EXPECT_EQ(3, *static_cast<int*>(iter.next()));
    EXPECT_EQ(4, *static_cast<int*>(iter.next()));
    EXPECT_EQ(nullptr, iter.next());
    std::string seen;
    for (int n : numbers)
        seen += std::to_string(n);
    EXPECT_EQ("134", seen);
}

TEST(KtDLListIter, RemovedFirstAndLastNodesAreUnlinkedWhenLeft)
{
    KtList<int> numbers;
    numbers.append(1);
    numbers.append(2);
    {
        KtDLListIter iter(&numbers);
        numbers.remove(numbers._firstNode());
        numbers.remove(numbers._lastNode());
        EXPECT_EQ(0, numbers.count());
        EXPECT_EQ(nullptr, iter.next());
    }
    EXPECT_EQ(nullptr, numbers._firstNode());
    EXPECT_EQ(nullptr, numbers._lastNode());
    numbers.append(3);
    EXPECT_EQ(3, *numbers[0]);
}

TEST(Kt_DLListCursor, WalksBothWaysAndRefusesDeletedData)
{
    KtList<int> numbers;
    for (int i = 1; i <= 3; ++i)
        numbers.append(i);
    KtDLListReadCursor cursor(&numbers);
    cursor.seekLast();
    EXPECT_EQ(3, *static_cast<int*>(cursor.data()));
    cursor.dec();
    EXPECT_EQ(2, *static_cast<int*>(cursor.data()));
    EXPECT_DEATH(
        {
            numbers.remove(cursor.node());
            cursor.data();
        },
        "");
}
