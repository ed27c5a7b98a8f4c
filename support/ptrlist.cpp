#include <zel/ptrlist.h>

static bool SamePointer(void* a, void* b) { return a == b; }

PtrList::PtrList(EqualFn equal) : m_head{nullptr, &m_end, nullptr}, m_end{&m_head, nullptr, nullptr},
                                  m_count(0), m_equal(equal ? equal : SamePointer) {}

PtrList::~PtrList() {
    // Only a list whose links were broken from outside can throw here.
    try {
        clear();
    } catch (const char*) {
    }
}

// Nothing can go before the head sentinel: inserting there adds nothing.
PtrList::iterator PtrList::insert(PtrList::iterator pos, void* value) {
    Node* next = pos.node();
    if (!next || !next->prev) return end();
    Node* node = new Node{next->prev, next, value};
    next->prev->next = node;
    next->prev = node;
    ++m_count;
    return iterator(node);
}

// The sentinels are never erased.
PtrList::iterator PtrList::erase(PtrList::iterator pos) {
    Node* node = pos.node();
    if (m_count == 0 || !node || !node->prev || !node->next) return end();
    Node* next = node->next;
    node->prev->next = next;
    next->prev = node->prev;
    delete node;
    --m_count;
    return iterator(next);
}

void PtrList::clear() {
    Node* node = m_head.next;
    while (node != &m_end) {
        Node* next = node->next;
        if (!next) throw "iterator out of range";
        delete node;
        node = next;
    }
    m_head.next = &m_end;
    m_end.prev = &m_head;
    m_count = 0;
}

PtrList::iterator PtrList::get(unsigned int index) {
    if (index >= m_count) return end();
    Node* node = m_head.next;
    for (unsigned int i = 0; i < index; ++i) {
        if (!node->next) throw "iterator out of range";
        node = node->next;
    }
    return iterator(node);
}

PtrList::iterator PtrList::operator[](unsigned int index) { return get(index); }

PtrList::iterator PtrList::find(void* value) const {
    Node* node = m_head.next;
    while (node != &m_end) {
        if (m_equal(value, node->value)) return iterator(node);
        if (!node->next) throw "iterator out of range";
        node = node->next;
    }
    return iterator(const_cast<Node*>(&m_end));
}

PtrList::iterator PtrList::rfind(void* value) const {
    Node* node = m_end.prev;
    while (node != &m_head) {
        if (!node->prev) throw "access value of iterator rend()";
        if (!node->next) throw "access value of iterator end()";
        if (m_equal(value, node->value)) return iterator(node);
        node = node->prev;
    }
    return iterator(const_cast<Node*>(&m_head));
}
