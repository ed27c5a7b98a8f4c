// A stand-in for a runtime object in unit tests: the object words, a class
// chain ending in the given record and zeroed data blocks, with the class's
// Init hook run on construction and its Free hook on destruction.
#pragma once

#include <vector>

#include <zel/zel_types.h>

class TestObject {
public:
    using Hook = void (*)(ZelObject*);
    // `level` is where the record sits in the chain (1 for most classes);
    // the levels below it have no record.
    TestObject(tagTBaseTypeInfo* record, Hook init = nullptr, Hook free = nullptr, int level = 1);
    ~TestObject();
    TestObject(const TestObject&) = delete;
    TestObject& operator=(const TestObject&) = delete;

    ZelObject* get() { return reinterpret_cast<ZelObject*>(m_words.data()); }
    operator ZelObject*() { return get(); }
    // Word `index` of the data block at `level`.
    void*& word(int level, int index);

private:
    Hook m_free;
    std::vector<void*> m_words;
    std::vector<int> m_chain;
    std::vector<std::vector<void*>> m_blocks;
};
