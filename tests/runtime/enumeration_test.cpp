// Walking an object's elements and methods along its class chain, and the
// property predicates checked against every method of the library.
#include <gtest/gtest.h>

#include <iterator>
#include <vector>

#include <zel/loader.h>
#include <zel/registry.h>

#include "common/test_object.h"

extern "C" tagTBaseTypeInfo g_info_Point;

namespace {
void Count(tagElementItem*, void* count) { ++*static_cast<int*>(count); }
void CountMethods(tagMethodItem*, void* count) { ++*static_cast<int*>(count); }
}  // namespace

TEST(Enumeration, ElementsAndMethodsOfEveryLevelWithARecord) {
    TestObject point(&g_info_Point);
    int elements = 0, methods = 0;
    EnumObjectAllElements(point, Count, &elements);
    EnumObjectAllMethods(point, CountMethods, &methods);
    EXPECT_EQ(elements, g_info_Point.elementCount);
    EXPECT_EQ(methods, g_info_Point.methodCount);
    EnumObjectAllElements(point, nullptr, &elements);  // no callback: nothing walked
    EnumObjectAllMethods(point, nullptr, &methods);
    EXPECT_EQ(elements, g_info_Point.elementCount);

    // Levels without a record are skipped; a class without elements adds none.
    tagTBaseTypeInfo bare = g_info_Point;
    bare.elements = nullptr;
    bare.elementCount = 0;
    TestObject upper(&bare, nullptr, nullptr, 2);
    elements = methods = 0;
    EnumObjectAllElements(upper, Count, &elements);
    EnumObjectAllMethods(upper, CountMethods, &methods);
    EXPECT_EQ(elements + methods, 0);
}

TEST(Enumeration, EveryPropertyOfTheLibraryIsAGetterOrASetter) {
    tagTBaseTypeInfo* records[256];
    int n = zel::EnumClassRecords(&g_zellib_info, records, int(std::size(records)));
    int getters = 0, setters = 0;
    for (int i = 0; i < n; ++i) {
        if (records[i]->kind != ZEL_KIND_CLASS) continue;
        for (int m = 0; m < records[i]->methodCount; ++m) {
            tagMethodItem* item = &records[i]->methods[m];
            bool read = MethodIsReadProperty(item), write = MethodIsWriteProperty(item);
            EXPECT_FALSE(read && write) << records[i]->name << L"." << item->name;
            EXPECT_EQ(MethodIsProperty(item), (item->flags & ZEL_METHOD_PROPERTY_BIT) != 0)
                << records[i]->name << L"." << item->name;
            getters += read;
            setters += write;
        }
    }
    EXPECT_GT(getters, 20);
    EXPECT_GT(setters, 10);
    EXPECT_FALSE(MethodIsProperty(nullptr));
}
