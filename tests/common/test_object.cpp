#include "common/test_object.h"

#include <cstdint>
#include <cwchar>

TestObject::TestObject(tagTBaseTypeInfo* record, Hook init, Hook free, int level) : m_free(free) {
    int levels = level + 1;
    m_chain.push_back(levels);
    for (int i = 0; i < levels; ++i) {
        m_chain.push_back(i == level ? int(reinterpret_cast<intptr_t>(record)) : 0);
        m_chain.push_back(0);
    }
    m_blocks.resize(levels);
    for (int i = 0; i < levels; ++i) {
        int words = 1;
        if (i == level && record) {
            words = 0;
            for (int e = 0; e < record->elementCount; ++e)
                words += wcscmp(record->elements[e].type, L"_db") == 0 ? 2 : 1;
            if (words == 0) words = 1;
        }
        m_blocks[i].assign(words, nullptr);
    }
    m_words.assign(2 + levels, nullptr);
    m_words[0] = m_words.data();
    m_words[1] = m_chain.data();
    for (int i = 0; i < levels; ++i) m_words[2 + i] = m_blocks[i].data();
    if (init) init(get());
}

TestObject::~TestObject() {
    if (m_free) m_free(get());
}

void*& TestObject::word(int level, int index) { return m_blocks.at(level).at(index); }
