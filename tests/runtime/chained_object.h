// An object of nothing but a class chain: the given records from level 0 up
// (null for a level without one) and no data blocks.
#pragma once

#include <cstdint>
#include <vector>

#include <zel/zel_types.h>

struct ChainedObject {
    explicit ChainedObject(std::vector<tagTBaseTypeInfo*> records) {
        chain.push_back(int(records.size()));
        for (tagTBaseTypeInfo* r : records) {
            chain.push_back(int(reinterpret_cast<intptr_t>(r)));
            chain.push_back(0);
        }
        object.runtimeWord = &object;
        object.classChain = chain.data();
    }
    ZelObject* get() { return &object; }
    operator ZelObject*() { return &object; }
    std::vector<int> chain;
    ZelObject object{};
};
