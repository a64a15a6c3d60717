#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "toolkit/KtArray.h"
#include "toolkit/KtList.h"
#include "toolkit/KtNameList.h"
#include "toolkit/KtStr.h"

TEST(KtArray, ResizingKeepsElementsAndHoldsExactlyTheCount)
{
    KtArray<float> values(2);
    values[0] = 1.5f;
    values[1] = 2.5f;
    values._resize(8);
    EXPECT_EQ(8, values.count());
    EXPECT_EQ(2.5f, values[1]);
    EXPECT_EQ(0.0f, values[7]); // new elements are value-initialised
    const float* storage = values.data();
    values._resize(8);
    EXPECT_EQ(storage, values.data());
    values._resize(1);
    EXPECT_EQ(1.5f, values[0]);
    values._resize(0);
    EXPECT_EQ(nullptr, values.data());
    EXPECT_EQ(0, values.count());
    KtArray<std::array<char, 1 << 20>> huge;
    EXPECT_DEATH(huge._resize(1 << 30), "Memory allocation failed");
}

TEST(KtArray, ClassElementsAreConstructedCopiedAndMoved)
{
    KtArray<KtStr> names(1);
    names[0] = "root";
    names._resize(50);
    names[49] = "lhand";
    names._resize(2);
    EXPECT_STREQ("", names[1].text());
    KtDArray<KtStr> copy;
    copy = names;
    names[0] = "changed";
    KtArray<KtStr> moved(std::move(copy));
    EXPECT_STREQ("root", moved[0].text());
    EXPECT_EQ(0, copy.count());

    KtArray<KtDArray<int>> rows(2);
    rows[0]._resize(3);
    rows[0][2] = 7;
    KtArray<KtDArray<int>> deep(rows);
    rows[0][2] = 9;
    deep.setElements(deep);
    EXPECT_EQ(7, deep[0][2]);
}

TEST(KtList, AppendsCopiesAndIndexesLiveElements)
{
    KtList<KtStr> names;
    for (const char* name : {"a", "b", "c"})
        names.append(name);
    EXPECT_STREQ("b", names[1]->text());
    names.removeLast();
    KtList<KtStr> copy(names);
    names.clear();
    EXPECT_TRUE(names._isNull());
    EXPECT_EQ(2, copy.count());
    EXPECT_STREQ("b", copy[1]->text());
    testing::internal::CaptureStdout();
    EXPECT_EQ(nullptr, copy[2]);
    EXPECT_EQ("KtDoubleLinkedList::operator [] (int) : element 2 not found!\n",
              testing::internal::GetCapturedStdout());
}

// A node removed under a visitor is no longer counted, never seen again, and
// unlinked when its last visitor leaves, even at the ends of the list.
TEST(KtDLListIter, RemovedNodesAreSkippedAndUnlinkedWhenLeft)
{
    KtList<int> numbers;
    for (int i = 1; i <= 4; ++i)
        numbers.append(i);
    {
        KtDLListIter iter(&numbers);
        EXPECT_EQ(1, *static_cast<int*>(iter.next()));
        numbers.remove(iter.node()); // 2, under the iterator
        EXPECT_EQ(3, numbers.count());
        EXPECT_EQ(3, *static_cast<int*>(iter.next()));
        numbers.remove(numbers._firstNode());
        numbers.remove(numbers._lastNode());
        EXPECT_EQ(1, numbers.count());
        EXPECT_EQ(3, *numbers[0]);
        EXPECT_EQ(nullptr, iter.next());
    }
    EXPECT_EQ(numbers._firstNode(), numbers._lastNode());
    numbers.removeLast();
    EXPECT_EQ(nullptr, numbers._firstNode());
    EXPECT_EQ(nullptr, numbers._lastNode());
}

// Names of any length (the empty one too) come back by position, across
// the every-16th starts, and in order. No program cuts a name list.
TEST(KtNameList, KeepsNamesInOrderAcrossTheEvery16thStarts)
{
    KtNameList names;
    std::vector<std::string> kept;
    for (int i = 0; i < 40; ++i)
    {
        kept.push_back(std::string(i % 5, static_cast<char>('a' + i % 26)));
        names.append(kept.back().c_str());
    }
    ASSERT_EQ(40, names.count());
    size_t i = 0;
    for (const char* name : names)
    {
        EXPECT_EQ(kept[i], names[static_cast<int>(i)]);
        EXPECT_EQ(kept[i++], name);
    }
    EXPECT_EQ(kept.size(), i);
}
